#include "support/BusMonitor.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QTest>

#include <array>

namespace corvane::test {

using namespace Qt::StringLiterals;

namespace {

/// A signal that arrives after everything that its connection sent before.
constexpr auto mark = "Mark"_L1;

void sendMark(const QString &connection)
{
    QDBusConnection(connection)
        .send(QDBusMessage::createSignal(u"/mark"_s, u"corvane.test"_s, mark));
}

} // namespace

BusMonitor::BusMonitor(const QString &address)
{
    m_process.start({u"dbus-monitor"_s, u"--address"_s, address, u"--profile"_s});
    fcntl(m_process.output().get(), F_SETFL, O_NONBLOCK);
    // A monitor loses its bus name when it is ready, and reports that first.
    const bool isReady = QTest::qWaitFor([this] {
        read();
        return m_members.contains("NameLost"_L1);
    });
    if (!isReady)
        qFatal("No monitor on the bus");
    m_members.clear();
}

QStringList BusMonitor::membersSince(const QStringList &connections)
{
    m_marks = 0;
    for (const QString &connection : connections)
        sendMark(connection);
    const bool hasAll = QTest::qWaitFor([this, &connections] {
        read();
        return m_marks == connections.size();
    });
    return hasAll ? std::exchange(m_members, {}) : QStringList{u"monitor received nothing"_s};
}

/// Parses one line a message: fields separated by tabs, the member last. Replies have none.
void BusMonitor::read()
{
    std::array<char, 4096> piece = {};
    for (ssize_t count = 0;
         (count = ::read(m_process.output().get(), piece.data(), piece.size())) > 0;)
        m_output.append(piece.data(), count);
    QByteArrayList lines = m_output.split('\n');
    m_output = lines.takeLast();
    for (const QByteArray &text : lines) {
        const QString line = QString::fromUtf8(text).trimmed();
        const QString member = line.section(u'\t', -1);
        if (line.startsWith(u'#') || line.startsWith("mr\t"_L1))
            continue;
        if (member == mark)
            ++m_marks;
        else
            m_members.append(member);
    }
}

} // namespace corvane::test
