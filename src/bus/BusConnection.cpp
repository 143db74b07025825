#include "bus/BusConnection.h"

#include "bus/BusOpening.h"
#include "bus/SessionBus.h"
#include "threads/BackgroundJob.h"
#include "threads/MainThread.h"

namespace corvane {

using namespace Qt::StringLiterals;

BusConnection::BusConnection(std::chrono::milliseconds retryInterval) : m_bus(QString())
{
    assertMainThread();
    m_retry.setSingleShot(true);
    m_retry.setInterval(retryInterval);
    m_retry.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_retry, &QTimer::timeout, this, &BusConnection::probe);
    QMetaObject::invokeMethod(this, &BusConnection::probe, Qt::QueuedConnection);
}

BusConnection::~BusConnection() = default;

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
    const bool isTried = runThenDeliver(
        this, [address = m_address] { return openBus(address); },
        [this](const QDBusConnection &bus) { use(bus); });
    if (!isTried)
        close();
}

void BusConnection::use(const QDBusConnection &bus)
{
    m_bus = bus;
    m_bus.connect(QString(), u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                  u"Disconnected"_s, this, SLOT(close()));
    if (m_bus.isConnected())
        emit connected();
    else
        close();
}

void BusConnection::close()
{
    m_probe.reset();
    m_bus = QDBusConnection(QString());
    m_retry.start();
    emit lost();
}

} // namespace corvane
