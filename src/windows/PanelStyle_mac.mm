#include "windows/PanelStyle_mac.h"

#include "threads/MainThread.h"

#import <AppKit/AppKit.h>

namespace corvane {

namespace {

NSWindow *asWindow(NativeWindow window)
{
    return (__bridge NSWindow *)reinterpret_cast<void *>(window);
}

} // namespace

void stylePanel(NativeWindow panel)
{
    assertMainThread();
    NSWindow *native = asWindow(panel);
    native.styleMask = native.styleMask | NSWindowStyleMaskNonactivatingPanel;
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
