#pragma once

#include <cstdint>
#include <functional>
#include <memory>

class QWidget;

namespace corvane {

/// How the system shows the program: with a label in the bar alone, or as one with windows, in the
/// list of running programs.
enum class ActivationPolicy { accessory, regular };

/// A window of the system's own: an NSWindow on a Mac, Qt's handle of it elsewhere. An identity
/// that only the platform looks into.
using NativeWindow = void *;

/// How a window behaves towards full screen and spaces: the system's flags, with the values that a
/// Mac gives them.
namespace CollectionBehavior {

inline constexpr std::uint64_t fullScreenPrimary = 1 << 7;
inline constexpr std::uint64_t fullScreenAuxiliary = 1 << 8;

} // namespace CollectionBehavior

/// Tells of a window's end for as long as it lives.
class CloseObserver {
public:
    CloseObserver() = default;
    virtual ~CloseObserver() = default;
    CloseObserver(const CloseObserver &) = delete;
    CloseObserver &operator=(const CloseObserver &) = delete;
};

/// What the life of a window asks of the system. Main thread.
struct WindowPlatform {
    /// The window that hosts a view; null while there is none.
    std::function<NativeWindow(const QWidget &view)> hostingWindow;

    std::function<std::uint64_t(NativeWindow)> collectionBehavior;
    std::function<void(NativeWindow, std::uint64_t flags)> setCollectionBehavior;
    std::function<void(NativeWindow)> enableZoomButton; ///< If the window has one.

    std::function<ActivationPolicy()> activationPolicy;
    std::function<void(ActivationPolicy)> setActivationPolicy;

    /// Brings the program to the front, whatever is there, and with it that window.
    std::function<void(NativeWindow)> activate;

    /// Calls `closing` on the main thread when that window is about to close. It may let go of the
    /// observer.
    std::function<std::unique_ptr<CloseObserver>(NativeWindow, std::function<void()> closing)>
        observeClose;
};

/// This system's.
WindowPlatform systemWindowPlatform();

} // namespace corvane
