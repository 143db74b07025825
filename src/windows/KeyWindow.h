#pragma once

#include <functional>

class QMenu;

namespace corvane {

/// The standard commands of a Mac's menus.
enum class WindowCommand { close, minimize, zoom, fullScreen, bringAllToFront, copy, selectAll };

/// The window that has the key focus, one of the program's own or of its libraries. Main thread.
struct KeyWindow {
    /// Nothing happens where `accepts` is false.
    std::function<void(WindowCommand)> perform;
    std::function<bool(WindowCommand)> accepts;
    std::function<bool()> isFullScreen;

    /// Lets the system add the open windows to one menu, and what it offers as help to the other.
    std::function<void(QMenu &windows, QMenu &help)> registerMenus;
};

/// That of the present system.
KeyWindow systemKeyWindow();

} // namespace corvane
