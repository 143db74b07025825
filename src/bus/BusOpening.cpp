#include "bus/BusOpening.h"

#include "threads/ThreadStart.h"

#include <atomic>

namespace corvane {

using namespace Qt::StringLiterals;

bool startBusThread()
{
    // Tried first, because the library does not report a failure.
    if (!canStartThread())
        return false;
    const QDBusConnection unknown(u"corvane"_s); // Any name makes the library start it.
    return true;
}

QDBusConnection openBus(const QString &address)
{
    static constinit std::atomic<int> count = 0;
    // The first connection of a process starts the library's thread and waits for it.
    if (!canStartThread())
        return QDBusConnection(QString());
    const QString name = u"corvane-%1"_s.arg(++count);
    const QDBusConnection bus = QDBusConnection::connectToBus(address, name);
    // The library forgets the name; copies keep the connection open. Later, the main thread would
    // have to wait for other connections that are being opened.
    QDBusConnection::disconnectFromBus(name);
    return bus;
}

} // namespace corvane
