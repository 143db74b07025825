#include "bus/SessionBus.h"

#include "bus/BusProbe.h"
#include "threads/MainThread.h"

#include <QFileInfo>
#include <QUrl>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto variable = "DBUS_SESSION_BUS_ADDRESS";
constexpr auto disabled = "disabled:"_L1;

/// Default socket of a user's bus, whether it runs or not; empty without XDG_RUNTIME_DIR.
QString defaultSocket()
{
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    return folder.isEmpty() ? QString() : folder + "/bus"_L1;
}

QString defaultAddress()
{
    const QByteArray socket = QUrl::toPercentEncoding(defaultSocket(), "/", "~");
    return socket.isEmpty() ? QString() : "unix:path="_L1 + QString::fromLatin1(socket);
}

/// The session's address before `disableHangingBus` replaced it; empty if it did not.
QString &replacedAddress()
{
    static QString address;
    return address;
}

/// The address that the session set; empty also for "autolaunch:", which would start a bus.
QString givenAddress()
{
    QString given = qEnvironmentVariable(variable);
    if (given == disabled && !replacedAddress().isEmpty())
        given = replacedAddress();
    return given.startsWith("autolaunch:"_L1) ? QString() : given;
}

} // namespace

QString sessionBusAddress()
{
    const QString given = givenAddress();
    if (given.isEmpty() || given == defaultAddress())
        return QFileInfo::exists(defaultSocket()) ? defaultAddress() : QString();
    return given == disabled ? QString() : given;
}

void preventBusStart()
{
    assertMainThread();
    if (!givenAddress().isEmpty())
        return;
    const QString address = defaultAddress();
    qputenv(variable, address.isEmpty() ? QByteArray(disabled.data()) : address.toLatin1());
}

void disableHangingBus(std::chrono::milliseconds timeout)
{
    assertMainThread();
    const QString address = sessionBusAddress();
    if (!busHangs(address, timeout))
        return;
    replacedAddress() = address;
    qputenv(variable, disabled.data());
}

} // namespace corvane
