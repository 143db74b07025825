#include "ui/SystemStyle.h"

#import <AppKit/AppKit.h>

namespace corvane {

namespace {

constexpr CGFloat anySize = 13;

QString familyOf(NSFont *font)
{
    return font ? QString::fromUtf8(font.familyName.UTF8String) : QString();
}

QColor toQColor(NSColor *color)
{
    return QColor::fromRgbF(
        static_cast<float>(color.redComponent), static_cast<float>(color.greenComponent),
        static_cast<float>(color.blueComponent), static_cast<float>(color.alphaComponent));
}

} // namespace

std::optional<QColor> systemSecondaryColor()
{
    __block std::optional<QColor> color;
    @autoreleasepool {
        // The windows are dark whatever the appearance of the other programs.
        [[NSAppearance appearanceNamed:NSAppearanceNameDarkAqua]
            performAsCurrentDrawingAppearance:^{
                NSColor *secondary =
                    [NSColor.secondaryLabelColor colorUsingColorSpace:NSColorSpace.sRGBColorSpace];
                if (secondary)
                    color = toQColor(secondary);
            }];
    }
    return color;
}

QString systemFontFamily()
{
    return familyOf([NSFont systemFontOfSize:anySize]);
}

QString systemRoundedFamily()
{
    NSFontDescriptor *rounded = [[NSFont systemFontOfSize:anySize].fontDescriptor
        fontDescriptorWithDesign:NSFontDescriptorSystemDesignRounded];
    return rounded ? familyOf([NSFont fontWithDescriptor:rounded size:anySize]) : QString();
}

} // namespace corvane
