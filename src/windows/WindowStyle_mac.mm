#include "windows/WindowStyle.h"

#include "threads/MainThread.h"

#import <AppKit/AppKit.h>

#include <QColor>

namespace corvane {

/// The content stays below the bar: behind it, the window's buttons would cover the content.
void hideTitleBar(NativeWindow window, const QColor &background)
{
    assertMainThread();
    NSWindow *native = (__bridge NSWindow *)reinterpret_cast<void *>(window);
    native.titleVisibility = NSWindowTitleHidden;
    native.titlebarAppearsTransparent = YES;
    native.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
    native.backgroundColor = [NSColor colorWithSRGBRed:background.redF()
                                                 green:background.greenF()
                                                  blue:background.blueF()
                                                 alpha:1];
}

} // namespace corvane
