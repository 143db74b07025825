#include "windows/PanelStyle_mac.h"

#include "threads/MainThread.h"

#import <AppKit/AppKit.h>

/// Not in AppKit's headers.
@interface NSWindow (CorvanePanel)
- (void)_setPreventsActivation:(BOOL)prevents;
@end

namespace corvane {

namespace {

NSWindow *asWindow(NativeWindow window)
{
    return (__bridge NSWindow *)reinterpret_cast<void *>(window);
}

/// A click into the panel leaves the active program active. AppKit tells the window server so only
/// while it creates a window with this style, and Qt creates its own without it.
void preventActivation(NSWindow *panel)
{
    panel.styleMask = panel.styleMask | NSWindowStyleMaskNonactivatingPanel;
    if ([panel respondsToSelector:@selector(_setPreventsActivation:)])
        [panel _setPreventsActivation:YES];
}

} // namespace

void stylePanel(NativeWindow panel)
{
    assertMainThread();
    NSWindow *native = asWindow(panel);
    preventActivation(native);
    native.level = NSPopUpMenuWindowLevel;
    native.collectionBehavior = NSWindowCollectionBehaviorMoveToActiveSpace
        | NSWindowCollectionBehaviorTransient | NSWindowCollectionBehaviorFullScreenAuxiliary;
    native.hasShadow = YES;
}

void focusPanel(NativeWindow panel)
{
    assertMainThread();
    // A program that gave the focus back is hidden.
    if (NSApp.hidden)
        [NSApp unhideWithoutActivation];
    [asWindow(panel) makeKeyAndOrderFront:nil];
}

} // namespace corvane
