#pragma once

#include <functional>
#include <memory>

class QWidget;

namespace corvane {

/// How the system shows the program: as a label in the bar alone, or as a program with windows in
/// the list of running ones.
enum class ActivationPolicy { accessory, regular };

/// The system's own object for a window, as an identity: only the platform's sources know its type.
struct NativeWindowObject;
using NativeWindow = NativeWindowObject *;

/// Reports the closing of a window while this object exists.
class CloseObserver {
public:
    CloseObserver() = default;
    virtual ~CloseObserver() = default;
    CloseObserver(const CloseObserver &) = delete;
    CloseObserver &operator=(const CloseObserver &) = delete;
};

/// What the dashboard's window needs from the system. Main thread.
struct WindowPlatform {
    /// The window that hosts a view; null while there is none.
    std::function<NativeWindow(const QWidget &view)> hostingWindow;

    /// Lets the window fill a screen of its own, rather than join another window's.
    std::function<void(NativeWindow)> allowFullScreen;
    std::function<void(NativeWindow)> enableZoomButton; ///< If the window has one.

    std::function<ActivationPolicy()> activationPolicy;
    std::function<void(ActivationPolicy)> setActivationPolicy;

    /// Brings the program and this window to the front.
    std::function<void(NativeWindow)> activate;

    /// Called when a window is closed: gives the key focus back to the program that had it before,
    /// unless another window is still open.
    std::function<void()> giveFocusBack;

    /// Calls `onClose` on the main thread when that window is about to close, or for null each time
    /// that any window is, also one of the system's libraries. `onClose` may delete the observer. A
    /// null result for null: the system needs nobody to know.
    std::function<std::unique_ptr<CloseObserver>(NativeWindow, std::function<void()> onClose)>
        observeClose;
};

/// The functions of the present system.
WindowPlatform systemWindowPlatform();

} // namespace corvane
