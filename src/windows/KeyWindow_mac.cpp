#include "windows/KeyWindow.h"

#include "windows/StandardCommands_mac.h"

#include <QMenu>

namespace corvane {

KeyWindow systemKeyWindow()
{
    return {
        .perform = sendStandardCommand,
        .accepts = acceptsStandardCommand,
        .isFullScreen = keyWindowIsFullScreen,
        .registerMenus =
            [](QMenu &windows, QMenu &help) {
                registerSystemMenus(windows.toNSMenu(), help.toNSMenu());
            },
    };
}

} // namespace corvane
