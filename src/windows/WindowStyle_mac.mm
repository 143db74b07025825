#include "windows/WindowStyle.h"

#import <AppKit/AppKit.h>

#include <QColor>

namespace corvane {

/// The content stays below the bar: under it the window's buttons would stand on the content's.
void hideTitleBar(NativeWindow window, const QColor &background)
{
    NSWindow *native = (__bridge NSWindow *)window;
    native.titleVisibility = NSWindowTitleHidden;
    native.titlebarAppearsTransparent = YES;
    native.appearance = [NSAppearance appearanceNamed:NSAppearanceNameDarkAqua];
    native.backgroundColor = [NSColor colorWithSRGBRed:background.redF()
                                                 green:background.greenF()
                                                  blue:background.blueF()
                                                 alpha:1];
}

} // namespace corvane
