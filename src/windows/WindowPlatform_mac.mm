#include "windows/WindowPlatform.h"

#import <AppKit/AppKit.h>

#include <QGuiApplication>
#include <QWidget>

#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

NSWindow *asWindow(NativeWindow window)
{
    return (__bridge NSWindow *)window;
}

NativeWindow hostingWindow(const QWidget &view)
{
    // Asking a view that has no window yet would make one for it; and only the windows that are on
    // the system's screen are the system's.
    const QWidget *window = view.window();
    if (!window->internalWinId() || QGuiApplication::platformName() != "cocoa"_L1)
        return nullptr;
    NSView *native = (__bridge NSView *)reinterpret_cast<void *>(window->internalWinId());
    return (__bridge NativeWindow)native.window;
}

class WillCloseObserver : public CloseObserver {
public:
    WillCloseObserver(NSWindow *window, std::function<void()> closing)
        : m_closing(std::make_shared<std::function<void()>>(std::move(closing)))
    {
        // The closing window may let go of this observer while its block runs.
        const std::weak_ptr<std::function<void()>> weakClosing = m_closing;
        m_observer = [NSNotificationCenter.defaultCenter
            addObserverForName:NSWindowWillCloseNotification
                        object:window
                         queue:NSOperationQueue.mainQueue
                    usingBlock:^(NSNotification *) {
                        if (const auto alive = weakClosing.lock())
                            (*alive)();
                    }];
    }
    ~WillCloseObserver() override
    {
        [NSNotificationCenter.defaultCenter removeObserver:m_observer];
    }

private:
    std::shared_ptr<std::function<void()>> m_closing;
    id<NSObject> m_observer;
};

} // namespace

WindowPlatform systemWindowPlatform()
{
    return {
        .hostingWindow = hostingWindow,
        .collectionBehavior = [](NativeWindow window) -> std::uint64_t {
            return asWindow(window).collectionBehavior;
        },
        .setCollectionBehavior =
            [](NativeWindow window, std::uint64_t flags) {
                asWindow(window).collectionBehavior = flags;
            },
        .enableZoomButton =
            [](NativeWindow window) {
                [asWindow(window) standardWindowButton:NSWindowZoomButton].enabled = YES;
            },
        .activationPolicy =
            [] {
                return NSApp.activationPolicy == NSApplicationActivationPolicyRegular
                    ? ActivationPolicy::regular
                    : ActivationPolicy::accessory;
            },
        .setActivationPolicy =
            [](ActivationPolicy policy) {
                [NSApp setActivationPolicy:policy == ActivationPolicy::regular
                           ? NSApplicationActivationPolicyRegular
                           : NSApplicationActivationPolicyAccessory];
            },
        .activate =
            [](NativeWindow window) {
                [NSApp activateIgnoringOtherApps:YES];
                [asWindow(window) makeKeyAndOrderFront:nil];
            },
        .observeClose = [](NativeWindow window,
                           std::function<void()> closing) -> std::unique_ptr<CloseObserver> {
            return std::make_unique<WillCloseObserver>(asWindow(window), std::move(closing));
        },
    };
}

} // namespace corvane
