#include "app/DisplayGuard.h"

#include "threads/MainThread.h"
#include "threads/Mutex.h"

#include <QStringList>

#include <utility>
#include <vector>

#include <unistd.h>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

struct Message {
    QtMsgType type;
    QByteArray category;
    QString text;
};

/// Messages of any thread while a guard lives.
class HeldMessages {
public:
    void add(Message message)
    {
        const MutexLock lock(m_mutex);
        m_messages.push_back(std::move(message));
    }
    std::vector<Message> take()
    {
        const MutexLock lock(m_mutex);
        return std::exchange(m_messages, {});
    }

private:
    Mutex m_mutex;
    std::vector<Message> m_messages GUARDED_BY(m_mutex);
};

HeldMessages &heldMessages()
{
    static HeldMessages messages;
    return messages;
}

void holdBack(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (type != QtFatalMsg) {
        heldMessages().add({type, context.category, text});
        return;
    }
    const QByteArray line = startFailureText(text).toLocal8Bit() + '\n';
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.constData(), line.size());
    _exit(1);
}

} // namespace

DisplayGuard::DisplayGuard() : m_previous(qInstallMessageHandler(holdBack))
{
    assertMainThread();
}

DisplayGuard::~DisplayGuard()
{
    qInstallMessageHandler(m_previous);
    for (const Message &message : heldMessages().take())
        qt_message_output(message.type,
                          QMessageLogContext(nullptr, 0, nullptr, message.category.constData()),
                          message.text);
}

QString startFailureText(const QString &fatalMessage)
{
    if (!fatalMessage.contains("platform plugin"_L1))
        return u"Corvane cannot start: "_s + fatalMessage.simplified();
    QStringList displays;
    for (const char *name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"}) {
        const QString value = qEnvironmentVariable(name).simplified();
        if (!value.isEmpty())
            displays.append(QLatin1StringView(name) + u'=' + value);
    }
    const QString line = u"Corvane cannot start: there is no display that it can reach"_s;
    return displays.isEmpty() ? line + u'.' : line + " ("_L1 + displays.join(", "_L1) + ")."_L1;
}

} // namespace corvane
