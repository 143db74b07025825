#pragma once

#include "windows/WindowPlatform.h"

#include <map>

namespace corvane {

/// Makes the program a regular one while an attached window is open, and an accessory of the bar
/// when it closes. Main thread.
class WindowLifecycleCoordinator {
public:
    explicit WindowLifecycleCoordinator(WindowPlatform platform = systemWindowPlatform());

    /// The program's one, made on first use.
    static WindowLifecycleCoordinator &shared();

    /// Lets the window go full screen, makes the program regular, brings it to the front and
    /// watches the window close. Attached again, a window is still watched once.
    void attach(NativeWindow window);

    std::size_t observerCount() const { return m_observers.size(); }

private:
    void windowWillClose(NativeWindow window);

    WindowPlatform m_platform;
    std::map<NativeWindow, std::unique_ptr<CloseObserver>> m_observers; ///< By their window.
};

} // namespace corvane
