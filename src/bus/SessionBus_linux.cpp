#include "bus/SessionBus.h"

#include "bus/BusProbe.h"

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

/// What the session said before it was hidden; empty: it was not.
QString &hiddenAddress()
{
    static QString address;
    return address;
}

/// What the session says; empty also for the order to start a bus.
QString givenAddress()
{
    QString given = qEnvironmentVariable(variable);
    if (given == disabled && !hiddenAddress().isEmpty())
        given = hiddenAddress();
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

void hideHangingBus(std::chrono::milliseconds patience)
{
    const QString address = sessionBusAddress();
    if (!busHangs(address, patience))
        return;
    hiddenAddress() = address;
    qputenv(variable, disabled.data());
}

} // namespace corvane
