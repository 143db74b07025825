#include "support/FakeTray.h"

#include <QDBusPendingCall>
#include <QDBusVariant>
#include <QTest>

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

QVariant FakeTray::property(const QString &item, const QString &name)
{
    const QDBusPendingCall answer = m_bus.asyncCall(propertyCall(item, name));
    if (!QTest::qWaitFor([&answer] { return answer.isFinished(); }))
        return {};
    return answer.reply().arguments().value(0).value<QDBusVariant>().variant();
}

QVariantList FakeTray::call(const QString &item, const QString &path, const QString &interface,
                            const QString &method, const QVariantList &arguments)
{
    QDBusMessage message = QDBusMessage::createMethodCall(item, path, interface, method);
    message.setArguments(arguments);
    const QDBusPendingCall answer = m_bus.asyncCall(message);
    if (!QTest::qWaitFor([&answer] { return answer.isFinished(); }) || answer.isError())
        return {};
    return answer.reply().arguments();
}

void FakeTray::RegisterStatusNotifierItem(const QString &item)
{
    m_items.append(item);
    m_bus.asyncCall(propertyCall(item, u"IconPixmap"_s));
}

} // namespace corvane::test
