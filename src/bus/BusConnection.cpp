#include "bus/BusConnection.h"

#include "bus/SessionBus.h"

#include <chrono>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto retryInterval = 3s;

} // namespace

BusConnection::BusConnection(const QString &name, QObject *parent)
    : QObject(parent),
      m_name(name),
      m_bus(QString())
{
    m_retry.setSingleShot(true);
    m_retry.setInterval(retryInterval);
    m_retry.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_retry, &QTimer::timeout, this, &BusConnection::knock);
    QMetaObject::invokeMethod(this, &BusConnection::knock, Qt::QueuedConnection);
}

BusConnection::~BusConnection()
{
    QDBusConnection::disconnectFromBus(m_name);
}

void BusConnection::knock()
{
    m_address = sessionBusAddress();
    if (m_address.isEmpty()) {
        lose();
        return;
    }
    m_knock = std::make_unique<BusProbe>(m_address);
    // Queued: both do away with it.
    connect(m_knock.get(), &BusProbe::answered, this, &BusConnection::open, Qt::QueuedConnection);
    connect(m_knock.get(), &BusProbe::refused, this, &BusConnection::lose, Qt::QueuedConnection);
}

void BusConnection::open()
{
    m_knock.reset();
    m_bus = QDBusConnection::connectToBus(m_address, m_name);
    if (!m_bus.isConnected()) {
        lose();
        return;
    }
    m_bus.connect(QString(), u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                  u"Disconnected"_s, this, SLOT(lose()));
    emit connected();
}

void BusConnection::lose()
{
    m_knock.reset();
    QDBusConnection::disconnectFromBus(m_name);
    m_bus = QDBusConnection(QString());
    m_retry.start();
    emit lost();
}

} // namespace corvane
