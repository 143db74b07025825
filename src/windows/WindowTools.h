#pragma once

#include "windows/WindowPlatform.h"

#include <QWidget>

namespace corvane {

// What the program's windows have in common. Main thread.

/// Whether a window that deletes itself when closed is open, minimized or not. One that was just
/// closed and is not yet deleted is not open.
inline bool isOpen(const QWidget *window)
{
    return window && window->isVisible();
}

/// Deletes the window when it is closed and returns its memory to the system.
void deleteOnClose(QWidget &window);

/// Shows a window in front of the others, restored if it was minimized, with the program's icon,
/// and activates the program.
void bringForward(QWidget &window, const WindowPlatform &platform = systemWindowPlatform());

/// Uses the desktop's token for the next window that is brought to the front. Ignores text that is
/// no activation token.
void useActivationToken(const QByteArray &token);

/// Closes the window on Control+W, on a Mac on Command+W.
void closeOnControlW(QWidget &window);

/// Closes the window on Escape.
void closeOnEscape(QWidget &window);

} // namespace corvane
