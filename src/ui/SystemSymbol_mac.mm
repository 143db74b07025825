#include "ui/SystemSymbol.h"

#include "platform/NativeText_mac.h"
#include "threads/MainThread.h"

#import <AppKit/AppKit.h>

#include <algorithm>

namespace corvane {

namespace {

CGFloat nativeWeight(SymbolWeight weight)
{
    switch (weight) {
    case SymbolWeight::light:
        return NSFontWeightLight;
    case SymbolWeight::medium:
        return NSFontWeightMedium;
    case SymbolWeight::semibold:
        return NSFontWeightSemibold;
    case SymbolWeight::bold:
        break;
    }
    return NSFontWeightBold;
}

NSRect centred(NSSize size, CGFloat width, CGFloat height)
{
    const CGFloat scale = std::min(width / size.width, height / size.height);
    const NSSize fitting = {size.width * scale, size.height * scale};
    return {{(width - fitting.width) / 2, (height - fitting.height) / 2}, fitting};
}

} // namespace

bool drawSystemSymbol(const std::string &name, SymbolWeight weight, unsigned char *pixels,
                      int width, int height)
{
    assertMainThread();
    NSImage *plain = [NSImage imageWithSystemSymbolName:nativeText(name)
                               accessibilityDescription:nil];
    NSImage *symbol =
        [plain imageWithSymbolConfiguration:[NSImageSymbolConfiguration
                                                configurationWithPointSize:height
                                                                    weight:nativeWeight(weight)]];
    NSBitmapImageRep *bitmap =
        [[NSBitmapImageRep alloc] initWithBitmapDataPlanes:&pixels
                                                pixelsWide:width
                                                pixelsHigh:height
                                             bitsPerSample:8
                                           samplesPerPixel:4
                                                  hasAlpha:YES
                                                  isPlanar:NO
                                            colorSpaceName:NSDeviceRGBColorSpace
                                               bytesPerRow:4 * width
                                              bitsPerPixel:32];
    NSGraphicsContext *context = [NSGraphicsContext graphicsContextWithBitmapImageRep:bitmap];
    if (!context || !symbol || !(symbol.size.width > 0 && symbol.size.height > 0))
        return false;
    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext.currentContext = context;
    [symbol drawInRect:centred(symbol.size, width, height)];
    [context flushGraphics];
    [NSGraphicsContext restoreGraphicsState];
    return true;
}

} // namespace corvane
