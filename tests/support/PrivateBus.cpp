#include "support/PrivateBus.h"

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
    const bool hasStarted =
        m_daemon.start({u"dbus-daemon"_s, u"--session"_s, u"--nofork"_s, u"--nopidfile"_s,
                        u"--nosyslog"_s, u"--print-address"_s, u"--address="_s + m_address});
    char first = 0; // The bus prints its address once it listens.
    return hasStarted && read(m_daemon.output().get(), &first, sizeof first) == sizeof first;
}

void PrivateBus::kill()
{
    m_daemon.kill();
}

void PrivateBus::hang() const
{
    m_daemon.send(SIGSTOP);
}

void PrivateBus::goOn() const
{
    m_daemon.send(SIGCONT);
}

} // namespace corvane::test
