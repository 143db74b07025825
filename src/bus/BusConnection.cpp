#include "bus/BusConnection.h"

#include "bus/SessionBus.h"
#include "threads/MainThread.h"
#include "threads/ThreadStart.h"

namespace corvane {

using namespace Qt::StringLiterals;

BusConnection::BusConnection(const QString &name, std::chrono::milliseconds retryInterval)
    : m_name(name),
      m_bus(QString())
{
    assertMainThread();
    m_retry.setSingleShot(true);
    m_retry.setInterval(retryInterval);
    m_retry.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_retry, &QTimer::timeout, this, &BusConnection::probe);
    QMetaObject::invokeMethod(this, &BusConnection::probe, Qt::QueuedConnection);
}

BusConnection::~BusConnection()
{
    QDBusConnection::disconnectFromBus(m_name);
}

void BusConnection::probe()
{
    m_address = sessionBusAddress();
    if (m_address.isEmpty()) {
        close();
        return;
    }
    m_probe = std::make_unique<BusProbe>(m_address);
    // Queued: both slots delete the probe.
    connect(m_probe.get(), &BusProbe::answered, this, &BusConnection::open, Qt::QueuedConnection);
    connect(m_probe.get(), &BusProbe::refused, this, &BusConnection::close, Qt::QueuedConnection);
}

void BusConnection::open()
{
    m_probe.reset();
    // The first connection of a process starts the library's thread and waits for it.
    if (!canStartThread()) {
        close();
        return;
    }
    m_bus = QDBusConnection::connectToBus(m_address, m_name);
    if (!m_bus.isConnected()) {
        close();
        return;
    }
    m_bus.connect(QString(), u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                  u"Disconnected"_s, this, SLOT(close()));
    emit connected();
}

void BusConnection::close()
{
    m_probe.reset();
    QDBusConnection::disconnectFromBus(m_name);
    m_bus = QDBusConnection(QString());
    m_retry.start();
    emit lost();
}

} // namespace corvane
