#include "windows/WindowPlatform.h"

#include <QWidget>
#include <QWindow>

namespace corvane {

namespace {

QWindow *asWindow(NativeWindow window)
{
    return static_cast<QWindow *>(window);
}

/// No desktop asks for it: a program is in the taskbar with the windows that it shows, and only
/// with these. It is kept for the rest of the program to read.
ActivationPolicy &policy()
{
    static ActivationPolicy current = ActivationPolicy::accessory;
    return current;
}

/// A window that is closed is hidden first, however that came about; a minimized one is not hidden.
class HideObserver : public CloseObserver {
public:
    HideObserver(QWindow *window, const std::function<void()> &closing)
        : m_connection(
            QObject::connect(window, &QWindow::visibleChanged, window, [closing](bool visible) {
                if (!visible)
                    closing();
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
    return {
        .hostingWindow = [](const QWidget &view) -> NativeWindow {
            return view.window()->windowHandle();
        },
        // Every window can fill the screen and has its button for it.
        .collectionBehavior = [](NativeWindow) { return CollectionBehavior::fullScreenPrimary; },
        .setCollectionBehavior = [](NativeWindow, std::uint64_t) {},
        .enableZoomButton = [](NativeWindow) {},
        .activationPolicy = [] { return policy(); },
        .setActivationPolicy = [](ActivationPolicy wanted) { policy() = wanted; },
        .activate = [](NativeWindow window) { asWindow(window)->requestActivate(); },
        .observeClose = [](NativeWindow window,
                           const std::function<void()> &closing) -> std::unique_ptr<CloseObserver> {
            return std::make_unique<HideObserver>(asWindow(window), closing);
        },
    };
}

} // namespace corvane
