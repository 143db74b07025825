#include "app/SessionBus.h"

#include <QFileInfo>

namespace corvane {

using namespace Qt::StringLiterals;

QString sessionBusAddress()
{
    const QString given = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!given.isEmpty())
        return given.startsWith("autolaunch:"_L1) ? QString() : given;
    const QString folder = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QString socket = folder + "/bus"_L1;
    return !folder.isEmpty() && QFileInfo::exists(socket) ? "unix:path="_L1 + socket : QString();
}

} // namespace corvane
