#include "support/PrivateBus.h"

#include <csignal>

namespace corvane::test {

using namespace Qt::StringLiterals;

PrivateBus::PrivateBus() : m_address("unix:path="_L1 + m_folder.filePath(u"bus"_s))
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toUtf8());
}

PrivateBus::~PrivateBus()
{
    kill();
}

bool PrivateBus::start()
{
    m_daemon.start(u"dbus-daemon"_s,
                   {u"--session"_s, u"--nofork"_s, u"--nopidfile"_s, u"--nosyslog"_s,
                    u"--print-address"_s, u"--address="_s + m_address});
    return m_daemon.waitForReadyRead(); // The address, once it listens.
}

void PrivateBus::kill()
{
    m_daemon.kill();
    m_daemon.waitForFinished();
}

void PrivateBus::hang() const
{
    ::kill(static_cast<pid_t>(m_daemon.processId()), SIGSTOP);
}

void PrivateBus::goOn() const
{
    ::kill(static_cast<pid_t>(m_daemon.processId()), SIGCONT);
}

} // namespace corvane::test
