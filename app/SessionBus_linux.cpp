#include "app/SessionBus.h"

#include <QFileInfo>
#include <QUrl>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto variable = "DBUS_SESSION_BUS_ADDRESS";
constexpr auto disabled = "disabled:"_L1;

/// Where a user's bus usually is, whether it runs or not; empty: nowhere.
QString usualSocket()
{
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return folder.isEmpty() ? QString() : folder + "/bus"_L1;
}

QString usualAddress()
{
    const QByteArray socket = QUrl::toPercentEncoding(usualSocket(), "/", "~");
    return socket.isEmpty() ? QString() : "unix:path="_L1 + QString::fromLatin1(socket);
}

/// What the session says; empty also for the order to start a bus.
QString givenAddress()
{
    const QString given = qEnvironmentVariable(variable);
    return given.startsWith("autolaunch:"_L1) ? QString() : given;
}

} // namespace

QString sessionBusAddress()
{
    const QString given = givenAddress();
    if (given.isEmpty() || given == usualAddress())
        return QFileInfo::exists(usualSocket()) ? usualAddress() : QString();
    return given == disabled ? QString() : given;
}

void startNoSessionBus()
{
    if (!givenAddress().isEmpty())
        return;
    const QString usual = usualAddress();
    qputenv(variable, usual.isEmpty() ? QByteArray(disabled.data()) : usual.toLatin1());
}

} // namespace corvane
