#pragma once

#include "windows/WindowPlatform.h"

class QColor;

namespace corvane {

/// Gives a window no title and a bar in its own colour, where windows of this system look like
/// that: on a Mac. Elsewhere the bar is the desktop's. Main thread.
void hideTitleBar(NativeWindow window, const QColor &background);

} // namespace corvane
