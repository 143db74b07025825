#pragma once

#include "windows/WindowPlatform.h"

#include <QWidget>

namespace corvane::test {

/// False where windows of this Qt platform are not the system's own: on a Mac without the screen.
inline bool hasNativeWindows()
{
    QWidget window;
    window.show();
    return systemWindowPlatform().hostingWindow(window) != nullptr;
}

} // namespace corvane::test

/// Ends a test that needs a window of the system's own.
#define CORVANE_SKIP_WITHOUT_NATIVE_WINDOWS()                                                      \
    do {                                                                                           \
        if (!corvane::test::hasNativeWindows())                                                    \
            QSKIP("windows without a screen are not the system's own");                            \
    } while (false)
