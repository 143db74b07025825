#include "login/LoginItem.h"

#include "login/Autostart.h"

#include <QCoreApplication>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// What starts this program again. A disk image that mounts itself names its own file, since the
/// program's place in it is gone with the mount; the name is inherited by whatever such a program
/// starts, so it counts for what lies in the image alone.
QString programFile()
{
    const QString program = QCoreApplication::applicationFilePath();
    const QString folder = qEnvironmentVariable("APPDIR");
    const QString image = qEnvironmentVariable("APPIMAGE");
    const bool isInImage =
        !folder.isEmpty() && !image.isEmpty() && program.startsWith(folder + u'/');
    return isInImage ? image : program;
}

} // namespace

LoginItem mainLoginItem()
{
    return autostartItem(programFile());
}

} // namespace corvane
