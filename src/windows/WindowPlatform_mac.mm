#include "windows/WindowPlatform.h"

#include "threads/MainThread.h"
#include "windows/CollectionBehavior_mac.h"

#import <AppKit/AppKit.h>

#include <QGuiApplication>
#include <QWidget>

#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

static_assert(CollectionBehavior::fullScreenPrimary == NSWindowCollectionBehaviorFullScreenPrimary);
static_assert(CollectionBehavior::fullScreenAuxiliary
              == NSWindowCollectionBehaviorFullScreenAuxiliary);

NSWindow *asWindow(NativeWindow window)
{
    return (__bridge NSWindow *)reinterpret_cast<void *>(window);
}

NativeWindow hostingWindow(const QWidget &view)
{
    // winId() would create a window for a view that has none. Under other Qt platforms (offscreen)
    // the number is no NSView.
    const QWidget *window = view.window();
    if (!window->internalWinId() || QGuiApplication::platformName() != "cocoa"_L1)
        return nullptr;
    NSView *native = (__bridge NSView *)reinterpret_cast<void *>(window->internalWinId());
    return reinterpret_cast<NativeWindow>((__bridge void *)native.window);
}

bool isOpen(NSWindow *window)
{
    const bool isPlain = (window.styleMask & NSWindowStyleMaskTitled) != 0;
    return isPlain && (window.visible || window.miniaturized);
}

/// An accessory that has no window any more would keep the focus. The system gives that of a hidden
/// program to the one that was active before it.
void giveFocusBack()
{
    if (!NSApp.active)
        return;
    for (NSWindow *window in NSApp.windows) {
        if (isOpen(window))
            return;
    }
    [NSApp hide:nil];
}

class WillCloseObserver : public CloseObserver {
public:
    WillCloseObserver(NSWindow *window, std::function<void()> onClose)
        : m_onClose(std::make_shared<std::function<void()>>(std::move(onClose)))
    {
        // The callback may delete this observer while the block runs.
        const std::weak_ptr<std::function<void()>> weakOnClose = m_onClose;
        m_observer = [NSNotificationCenter.defaultCenter
            addObserverForName:NSWindowWillCloseNotification
                        object:window
                         queue:NSOperationQueue.mainQueue
                    usingBlock:^(NSNotification *) {
                        if (const auto alive = weakOnClose.lock())
                            (*alive)();
                    }];
    }
    ~WillCloseObserver() override
    {
        [NSNotificationCenter.defaultCenter removeObserver:m_observer];
    }

private:
    std::shared_ptr<std::function<void()>> m_onClose;
    id<NSObject> m_observer;
};

} // namespace

WindowPlatform systemWindowPlatform()
{
    assertMainThread();
    return {
        .hostingWindow = hostingWindow,
        .allowFullScreen =
            [](NativeWindow window) {
                NSWindow *native = asWindow(window);
                native.collectionBehavior =
                    CollectionBehavior::allowingFullScreen(native.collectionBehavior);
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
        .giveFocusBack = giveFocusBack,
        .observeClose = [](NativeWindow window,
                           std::function<void()> onClose) -> std::unique_ptr<CloseObserver> {
            return std::make_unique<WillCloseObserver>(asWindow(window), std::move(onClose));
        },
    };
}

} // namespace corvane
