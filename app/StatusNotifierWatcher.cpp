#include "app/StatusNotifierWatcher.h"

#include "app/SessionBus.h"
#include "app/TrayProgram.h"

#include <QDBusPendingCallWatcher>
#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <chrono>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto reconnectInterval = 3s;

constexpr auto connectionName = "corvane-tray"_L1;
constexpr auto watcherName = "org.kde.StatusNotifierWatcher"_L1;
constexpr auto watcherPath = "/StatusNotifierWatcher"_L1;

QDBusMessage busCall(const QString &method)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        u"org.freedesktop.DBus"_s, u"/org/freedesktop/DBus"_s, u"org.freedesktop.DBus"_s, method);
    return call << QString(watcherName);
}

} // namespace

StatusNotifierWatcher::StatusNotifierWatcher(QObject *parent) : QObject(parent), m_bus(QString())
{
    m_reconnect.setInterval(reconnectInterval);
    m_reconnect.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_reconnect, &QTimer::timeout, this, &StatusNotifierWatcher::connectToBus);
    QMetaObject::invokeMethod(this, &StatusNotifierWatcher::connectToBus, Qt::QueuedConnection);
}

StatusNotifierWatcher::~StatusNotifierWatcher()
{
    QDBusConnection::disconnectFromBus(connectionName);
}

QDBusMessage StatusNotifierWatcher::methodCall(const QString &method)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(watcherName, watcherPath, watcherName, method);
    call.setAutoStartService(false);
    return call;
}

void StatusNotifierWatcher::connectToBus()
{
    m_busAddress = sessionBusAddress();
    if (!m_busAddress.isEmpty())
        m_bus = QDBusConnection::connectToBus(m_busAddress, connectionName);
    if (!m_bus.isConnected()) {
        loseBus();
        return;
    }
    m_reconnect.stop();
    m_bus.connect(QString(), u"/org/freedesktop/DBus/Local"_s, u"org.freedesktop.DBus.Local"_s,
                  u"Disconnected"_s, this, SLOT(loseBus()));
    for (const QString &signal :
         {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s})
        m_bus.connect(QString(), watcherPath, watcherName, signal, this, SLOT(askForHost()));

    m_nameWatcher = std::make_unique<QDBusServiceWatcher>(watcherName, m_bus);
    connect(m_nameWatcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) { lookUp(owner); });
    ask(busCall(u"GetNameOwner"_s),
        [this](const QDBusMessage &reply) { lookUp(reply.arguments().value(0).toString()); });
}

void StatusNotifierWatcher::loseBus()
{
    m_nameWatcher.reset();
    QDBusConnection::disconnectFromBus(connectionName);
    m_bus = QDBusConnection(QString());
    m_reconnect.start();
    lookUp(QString());
}

void StatusNotifierWatcher::lookUp(const QString &owner)
{
    if (owner.isEmpty()) {
        m_owner.clear();
        publish(std::nullopt);
        return;
    }
    if (owner == m_owner)
        return;
    // A new owner knows none of the items, even if it is the same program.
    const bool hadHost = m_host.has_value();
    m_owner = owner;
    m_host.reset();
    m_isKnown = false;
    if (hadHost)
        emit hostChanged();
    ask(busCall(u"GetConnectionUnixProcessID"_s), [this, owner](const QDBusMessage &reply) {
        if (owner != m_owner)
            return;
        m_kind = trayHost(trayProgram(reply.arguments().value(0).toUInt()));
        askForHost();
    });
}

/// A watcher without a host shows nothing.
void StatusNotifierWatcher::askForHost()
{
    askForProperty(u"IsStatusNotifierHostRegistered"_s, [this](const QVariant &isThere) {
        publish(isThere.toBool() ? std::optional(m_kind) : std::nullopt);
    });
}

void StatusNotifierWatcher::askForItems()
{
    askForProperty(u"RegisteredStatusNotifierItems"_s, [this](const QVariant &items) {
        if (items.isValid())
            emit itemsListed(items.toStringList());
    });
}

/// Calls `use` with an invalid value for an error; not at all for an answer of another owner.
void StatusNotifierWatcher::askForProperty(const QString &name,
                                           const std::function<void(const QVariant &)> &use)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        watcherName, watcherPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call.setAutoStartService(false);
    call << QString(watcherName) << name;
    ask(call, [this, use, owner = m_owner](const QDBusMessage &reply) {
        if (owner == m_owner)
            use(reply.arguments().value(0).value<QDBusVariant>().variant());
    });
}

/// Calls `use` with the reply, or with a message without arguments for an error.
void StatusNotifierWatcher::ask(const QDBusMessage &call, const Use &use)
{
    auto *answer = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(answer, &QDBusPendingCallWatcher::finished, this, [answer, use] {
        answer->deleteLater();
        use(answer->isError() ? QDBusMessage() : answer->reply());
    });
}

void StatusNotifierWatcher::publish(const std::optional<TrayHost> &host)
{
    if (m_isKnown && host == m_host)
        return;
    m_isKnown = true;
    m_host = host;
    emit hostChanged();
}

} // namespace corvane
