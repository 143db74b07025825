#pragma once

#include "windows/WindowPlatform.h"

namespace corvane {

// How a Mac's system treats the panel's window. Main thread.

/// Called before the panel is first shown. It stands above other windows and beside a window that
/// fills the screen, moves to the space that the user sees, is no part of the overview of windows,
/// and leaves the active program active.
void stylePanel(NativeWindow panel);

/// Gives the panel the key focus, also while the program is hidden.
void focusPanel(NativeWindow panel);

} // namespace corvane
