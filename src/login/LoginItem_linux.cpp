#include "login/LoginItem.h"

#include "login/Autostart_linux.h"
#include "threads/MainThread.h"

#include <QCoreApplication>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// The file that starts this program again. An AppImage names its own file in APPIMAGE: the path of
/// the program inside is gone when the image is unmounted. Programs that it starts inherit the
/// variable, so it counts only for a program inside the image.
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
    assertMainThread();
    return autostartItem(programFile());
}

QString loginItemFile()
{
    return autostartFiles().constFirst();
}

} // namespace corvane
