#pragma once

#include "windows/WindowPlatform.h"

#include <cstddef>
#include <map>

namespace corvane {

/// Makes the program a regular one when a window is attached, and an accessory again when that
/// window closes. Main thread.
class WindowLifecycleCoordinator {
public:
    explicit WindowLifecycleCoordinator(WindowPlatform platform = systemWindowPlatform());

    /// The program's only one, created at first use.
    static WindowLifecycleCoordinator &shared();

    /// Lets the window go full screen, makes the program regular, brings it to the front and
    /// observes the window's end. A window that is attached again is still observed once.
    void attach(NativeWindow window);

    std::size_t observerCount() const { return m_observers.size(); }

private:
    void windowWillClose(NativeWindow window);

    WindowPlatform m_platform;
    std::map<NativeWindow, std::unique_ptr<CloseObserver>> m_observers;
};

} // namespace corvane
