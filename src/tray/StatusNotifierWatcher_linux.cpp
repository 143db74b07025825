#include "tray/StatusNotifierWatcher_linux.h"

#include "threads/MainThread.h"
#include "tray/TrayProgram_linux.h"

#include <QDBusServiceWatcher>
#include <QDBusVariant>

#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr QLatin1StringView watcherName(StatusNotifierWatcher::service);
constexpr QLatin1StringView watcherPath(StatusNotifierWatcher::interface.path);

QDBusMessage busCall(const QString &method)
{
    return BusCall::toBus(method, {QString(watcherName)});
}

} // namespace

StatusNotifierWatcher::StatusNotifierWatcher(QObject *parent) : QObject(parent)
{
    assertMainThread();
    connect(&m_connection, &BusConnection::connected, this, &StatusNotifierWatcher::onConnected);
    connect(&m_connection, &BusConnection::lost, this, &StatusNotifierWatcher::onLost);
}

StatusNotifierWatcher::~StatusNotifierWatcher() = default;

void StatusNotifierWatcher::onConnected()
{
    QDBusConnection &bus = m_connection.bus();
    for (const QString &signal :
         {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s})
        bus.connect(QString(), watcherPath, watcherName, signal, this, SLOT(requestHost()));

    m_nameWatcher = std::make_unique<QDBusServiceWatcher>(watcherName, bus);
    connect(m_nameWatcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) { setOwner(owner); });
    ask(busCall(u"GetNameOwner"_s),
        [this](const QDBusMessage &reply) { setOwner(reply.arguments().value(0).toString()); });
}

void StatusNotifierWatcher::onLost()
{
    m_nameWatcher.reset();
    setOwner(QString());
}

void StatusNotifierWatcher::setOwner(const QString &owner)
{
    if (owner != m_owner)
        m_isAsking = false; // The reply of the owner before is dropped.
    if (owner.isEmpty()) {
        m_owner.clear();
        publish(std::nullopt);
        return;
    }
    if (owner == m_owner)
        return;
    // A new owner has none of the items, even if it is the same program.
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
        requestHost();
    });
}

/// A watcher without a registered host shows no items. Any program can send its signals, so a
/// question is repeated once, however many arrive before the reply.
void StatusNotifierWatcher::requestHost()
{
    m_hasToAsk = std::exchange(m_isAsking, true);
    if (m_hasToAsk)
        return;
    requestProperty(u"IsStatusNotifierHostRegistered"_s, [this](const QVariant &isThere) {
        m_isAsking = false;
        if (m_hasToAsk)
            requestHost();
        publish(isThere.toBool() ? std::optional(m_kind) : std::nullopt);
    });
}

void StatusNotifierWatcher::requestItems()
{
    requestProperty(u"RegisteredStatusNotifierItems"_s, [this](const QVariant &items) {
        if (items.isValid())
            emit itemsListed(items.toStringList());
    });
}

/// Calls `onValue` with the value, or with an invalid one after an error. A reply that arrives
/// after the owner changed is dropped.
void StatusNotifierWatcher::requestProperty(const QString &name,
                                            const std::function<void(const QVariant &)> &onValue)
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        watcherName, watcherPath, u"org.freedesktop.DBus.Properties"_s, u"Get"_s);
    call.setAutoStartService(false);
    call << QString(watcherName) << name;
    ask(call, [this, onValue, owner = m_owner](const QDBusMessage &reply) {
        if (owner == m_owner)
            onValue(reply.arguments().value(0).value<QDBusVariant>().variant());
    });
}

void StatusNotifierWatcher::ask(const QDBusMessage &call, const BusCall::ReplyHandler &onReply)
{
    BusCall::send(m_connection.bus(), call, this, onReply);
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
