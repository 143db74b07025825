#include "windows/WindowPlatform.h"

#include "threads/MainThread.h"

#include <QWidget>
#include <QWindow>

namespace corvane {

namespace {

QWindow *asWindow(NativeWindow window)
{
    return reinterpret_cast<QWindow *>(window);
}

/// Kept for the rest of the program to read. It has no effect on Linux: a program is in the taskbar
/// by the windows that it shows.
ActivationPolicy &policy()
{
    static ActivationPolicy current = ActivationPolicy::accessory;
    return current;
}

/// A closing window is hidden first, whatever closes it; a minimized one is not hidden.
class HideObserver : public CloseObserver {
public:
    HideObserver(QWindow *window, const std::function<void()> &onClose)
        : m_connection(
            QObject::connect(window, &QWindow::visibleChanged, window, [onClose](bool visible) {
                if (!visible)
                    onClose();
            }))
    {
    }
    ~HideObserver() override { QObject::disconnect(m_connection); }

private:
    QMetaObject::Connection m_connection;
};

} // namespace

WindowPlatform systemWindowPlatform()
{
    assertMainThread();
    return {
        .hostingWindow = [](const QWidget &view) -> NativeWindow {
            return reinterpret_cast<NativeWindow>(view.window()->windowHandle());
        },
        // Every window can fill the screen and has its button for it.
        .allowFullScreen = [](NativeWindow) {},
        .enableZoomButton = [](NativeWindow) {},
        .activationPolicy = [] { return policy(); },
        .setActivationPolicy = [](ActivationPolicy wanted) { policy() = wanted; },
        .activate = [](NativeWindow window) { asWindow(window)->requestActivate(); },
        .giveFocusBack = [] {}, // Every window manager does.
        .observeClose = [](NativeWindow window,
                           const std::function<void()> &onClose) -> std::unique_ptr<CloseObserver> {
            if (!window)
                return nullptr; // Every window manager moves the focus itself.
            return std::make_unique<HideObserver>(asWindow(window), onClose);
        },
    };
}

} // namespace corvane
