#include "app/AboutPanel.h"

#include "platform/NativeText_mac.h"
#include "threads/MainThread.h"

#import <AppKit/AppKit.h>

namespace corvane {

void showAboutPanel()
{
    assertMainThread();
    const AboutTexts texts = AboutTexts::current();
    NSAttributedString *credits = [[NSAttributedString alloc]
        initWithString:nativeText(texts.credits.toStdString())
            attributes:@{
                NSFontAttributeName : [NSFont systemFontOfSize:11],
                NSForegroundColorAttributeName : NSColor.secondaryLabelColor
            }];
    [NSApp activateIgnoringOtherApps:YES];
    [NSApp orderFrontStandardAboutPanelWithOptions:@{
        NSAboutPanelOptionApplicationName : nativeText(texts.name.toStdString()),
        NSAboutPanelOptionApplicationVersion : nativeText(texts.version.toStdString()),
        NSAboutPanelOptionVersion : nativeText(texts.build.toStdString()),
        NSAboutPanelOptionCredits : credits,
        @"Copyright" : nativeText(texts.copyright.toStdString())
    }];
}

} // namespace corvane
