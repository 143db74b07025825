#include "tray/StatusNotifierWatcher.h"

#include "tray/TrayProgram.h"

#include <QDBusServiceWatcher>
#include <QDBusVariant>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto watcherName = "org.kde.StatusNotifierWatcher"_L1;
constexpr auto watcherPath = "/StatusNotifierWatcher"_L1;

QDBusMessage busCall(const QString &method)
{
    return BusCall::toBus(method, {QString(watcherName)});
}

} // namespace

StatusNotifierWatcher::StatusNotifierWatcher(QObject *parent)
    : QObject(parent),
      m_connection(u"corvane-tray"_s)
{
    connect(&m_connection, &BusConnection::connected, this, &StatusNotifierWatcher::watchBus);
    connect(&m_connection, &BusConnection::lost, this, &StatusNotifierWatcher::loseBus);
}

StatusNotifierWatcher::~StatusNotifierWatcher() = default;

QDBusMessage StatusNotifierWatcher::methodCall(const QString &method)
{
    QDBusMessage call =
        QDBusMessage::createMethodCall(watcherName, watcherPath, watcherName, method);
    call.setAutoStartService(false);
    return call;
}

void StatusNotifierWatcher::watchBus()
{
    QDBusConnection &bus = m_connection.bus();
    for (const QString &signal :
         {u"StatusNotifierHostRegistered"_s, u"StatusNotifierHostUnregistered"_s})
        bus.connect(QString(), watcherPath, watcherName, signal, this, SLOT(askForHost()));

    m_nameWatcher = std::make_unique<QDBusServiceWatcher>(watcherName, bus);
    connect(m_nameWatcher.get(), &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString &, const QString &, const QString &owner) { lookUp(owner); });
    ask(busCall(u"GetNameOwner"_s),
        [this](const QDBusMessage &reply) { lookUp(reply.arguments().value(0).toString()); });
}

void StatusNotifierWatcher::loseBus()
{
    m_nameWatcher.reset();
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
