#pragma once

#include <QWidget>

namespace corvane {

/// What all windows of the program have in common. Main thread.

/// Whether a window that deletes itself when it is closed is open, minimized or not. One that was
/// just closed may still be there: it is not.
inline bool isOpen(const QWidget *window)
{
    return window && window->isVisible();
}

/// Has a window go when it is closed, and what it held with it.
void deleteOnClose(QWidget &window);

/// Shows a window in front of the others, back from the taskbar too, with the program's sign.
void bringForward(QWidget &window);

/// Takes the desktop's leave to come to the front for the next window that is brought there. What
/// cannot be such a token is left.
void useActivationToken(const QByteArray &token);

/// Has a window close on Control and W, on a Mac on Command and W.
void closeOnUsualKey(QWidget &window);

/// Has it close on Escape too, as small windows do.
void closeOnEscape(QWidget &window);

} // namespace corvane
