#include "app/DesktopSession.h"

#include <QByteArray>

namespace corvane {

bool prepareDesktopSession()
{
    // Qt activates a program that has launched, one without an icon in the Dock too, unless this is
    // set when the application object is created.
    qputenv("QT_MAC_DISABLE_FOREGROUND_APPLICATION_TRANSFORM", "1");
    return true;
}

} // namespace corvane
