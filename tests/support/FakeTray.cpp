#include "support/FakeTray.h"
#include "support/Waiting.h"

#include <QDBusConnectionInterface>
#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QTest>
#include <QTimer>

#include <algorithm>

#include <sys/prctl.h>

namespace corvane::test {

using namespace Qt::StringLiterals;

namespace {

QDBusMessage propertyCall(const QString &item, const QString &name)
{
    return QDBusMessage::createMethodCall(item, u"/StatusNotifierItem"_s,
                                          u"org.freedesktop.DBus.Properties"_s, u"Get"_s)
        << QString::fromLatin1(FakeTray::itemInterface) << name;
}

} // namespace

FakeTray::FakeTray(const QString &address, const char *program)
    : m_bus(QDBusConnection::connectToBus(address, u"fake-tray"_s))
{
    prctl(PR_SET_NAME, program);
    m_nameWatcher.setConnection(m_bus);
    m_nameWatcher.setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(&m_nameWatcher, &QDBusServiceWatcher::serviceUnregistered, this,
            [this](const QString &item) { m_items.removeAll(item); });
    m_bus.registerObject(u"/StatusNotifierWatcher"_s, this,
                         QDBusConnection::ExportScriptableContents);
    if (!m_bus.registerService(u"org.kde.StatusNotifierWatcher"_s))
        qFatal("The private bus already has a tray");
}

FakeTray::~FakeTray()
{
    QDBusConnection::disconnectFromBus(u"fake-tray"_s);
}

void FakeTray::setHost(bool present)
{
    m_hasHost = present;
    if (present)
        emit StatusNotifierHostRegistered();
    else
        emit StatusNotifierHostUnregistered();
}

void FakeTray::loseRegistrations(int number, int count)
{
    m_firstLost = number;
    m_lost = count;
}

void FakeTray::readPictures()
{
    for (const QString &item : m_items)
        m_bus.asyncCall(propertyCall(item, u"IconPixmap"_s));
}

QVariant FakeTray::property(const QString &item, const QString &name)
{
    const QDBusPendingCall answer = m_bus.asyncCall(propertyCall(item, name));
    if (!QTest::qWaitFor([&answer] { return answer.isFinished(); }, patience))
        return {};
    return answer.reply().arguments().value(0).value<QDBusVariant>().variant();
}

QVariantList FakeTray::call(const QString &item, const QString &path, const QString &interface,
                            const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(item, path, interface, method);
    message.setArguments(arguments);
    const QDBusPendingCall answer = m_bus.asyncCall(message);
    if (!QTest::qWaitFor([&answer] { return answer.isFinished(); }, patience) || answer.isError())
        return {};
    return answer.reply().arguments();
}

void FakeTray::RegisterStatusNotifierItem(const QString &item)
{
    const int number = ++m_registrations;
    if (m_refuses)
        sendErrorReply(QDBusError::AccessDenied);
    if (m_delay.count() == 0) {
        take(item, number);
        return;
    }
    setDelayedReply(true);
    m_mostPending = std::max(m_mostPending, ++m_pending);
    QTimer::singleShot(m_delay, this, [this, item, number, call = message()] {
        --m_pending;
        m_bus.send(call.createReply());
        take(item, number);
    });
}

void FakeTray::take(const QString &item, int number)
{
    const bool isLost = number >= m_firstLost && number < m_firstLost + m_lost;
    const bool isThere = m_bus.interface()->isServiceRegistered(item); // It may have left since.
    if (isThere && !isLost) {
        m_items.append(item);
        m_nameWatcher.addWatchedService(item);
    }
    m_bus.asyncCall(propertyCall(item, u"IconPixmap"_s));
}

QStringList FakeTray::listItems()
{
    ++m_listings;
    QStringList list;
    for (const QString &item : m_items)
        list.append(item + m_separator + "/StatusNotifierItem"_L1);
    return list;
}

} // namespace corvane::test
