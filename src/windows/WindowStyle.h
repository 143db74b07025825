#pragma once

#include "windows/WindowPlatform.h"

class QColor;

namespace corvane {

/// On a Mac hides the window's title and gives its title bar the background's colour. Elsewhere the
/// title bar is the desktop's and stays. Main thread.
void hideTitleBar(NativeWindow window, const QColor &background);

} // namespace corvane
