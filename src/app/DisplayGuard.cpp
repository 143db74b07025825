#include "app/DisplayGuard.h"

#include <QStringList>

#include <mutex>
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

/// What was said meanwhile, by any thread.
class HeldMessages {
public:
    void add(Message message)
    {
        const std::lock_guard lock(m_mutex);
        m_messages.push_back(std::move(message));
    }
    std::vector<Message> take()
    {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_messages, {});
    }

private:
    std::mutex m_mutex;
    std::vector<Message> m_messages; ///< Guarded by m_mutex.
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
    const QByteArray line = withoutDisplayLine(text).toLocal8Bit() + '\n';
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, line.constData(), line.size());
    _exit(1);
}

} // namespace

DisplayGuard::DisplayGuard() : m_previous(qInstallMessageHandler(holdBack)) { }

DisplayGuard::~DisplayGuard()
{
    qInstallMessageHandler(m_previous);
    for (const Message &message : heldMessages().take())
        qt_message_output(message.type,
                          QMessageLogContext(nullptr, 0, nullptr, message.category.constData()),
                          message.text);
}

QString withoutDisplayLine(const QString &fatalMessage)
{
    if (!fatalMessage.contains("platform plugin"_L1))
        return u"Corvane cannot start: "_s + fatalMessage.simplified();
    QStringList asked;
    for (const char *name : {"QT_QPA_PLATFORM", "WAYLAND_DISPLAY", "DISPLAY"}) {
        const QString value = qEnvironmentVariable(name).simplified();
        if (!value.isEmpty())
            asked.append(QLatin1StringView(name) + u'=' + value);
    }
    const QString line = u"Corvane cannot start: there is no display that it can reach"_s;
    return asked.isEmpty() ? line + u'.' : line + " ("_L1 + asked.join(", "_L1) + ")."_L1;
}

} // namespace corvane
