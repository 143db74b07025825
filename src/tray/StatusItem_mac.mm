#include "tray/StatusItem_mac.h"

#include "platform/NativeText_mac.h"
#include "threads/MainThread.h"

#import <AppKit/AppKit.h>

#include <utility>

// A button sends its clicks to an Objective-C object, which calls the handlers. The same object
// observes whether the bar is light, which changes with the desktop picture behind it.

/// The target of the item's button; owned by the item.
@interface CorvaneStatusTarget : NSObject
- (instancetype)initWithButton:(NSStatusBarButton *)button
                       actions:(corvane::StatusActions)actions
                         plate:(NSColor *)plate;
- (void)clicked:(id)sender;
- (void)stop;
@end

namespace {

using namespace corvane;

NSString *const appearanceKey = @"effectiveAppearance";

NSColor *nativeColor(const StatusColor &color)
{
    return [NSColor colorWithSRGBRed:color.red
                               green:color.green
                                blue:color.blue
                               alpha:color.opacity];
}

NSFont *labelFont()
{
    NSFont *plain = [NSFont systemFontOfSize:11 weight:NSFontWeightSemibold];
    NSFontDescriptor *rounded =
        [plain.fontDescriptor fontDescriptorWithDesign:NSFontDescriptorSystemDesignRounded];
    NSFont *font = rounded ? [NSFont fontWithDescriptor:rounded size:11] : nil;
    return font ? font : plain;
}

/// The gap is extra advance after the run's last character.
NSAttributedString *nativeRun(const StatusRun &run, NSFont *font)
{
    NSMutableAttributedString *text = [[NSMutableAttributedString alloc]
        initWithString:nativeText(run.text)
            attributes:@{
                NSFontAttributeName : font,
                NSForegroundColorAttributeName : nativeColor(run.color)
            }];
    if (run.gapAfter > 0 && text.length > 0) {
        [text addAttribute:NSKernAttributeName
                     value:@(run.gapAfter)
                     range:NSMakeRange(text.length - 1, 1)];
    }
    return text;
}

StatusPlace placeOf(NSStatusBarButton *button)
{
    NSWindow *window = button.window;
    NSScreen *primary = NSScreen.screens.firstObject;
    if (!window || !primary)
        return {};
    const NSRect inWindow = [button convertRect:button.bounds toView:nil];
    const NSRect onScreen = [window convertRectToScreen:inWindow];
    return {onScreen.origin.x + onScreen.size.width / 2, onScreen.origin.y,
            primary.frame.size.height};
}

bool wantsMenu(NSEvent *event)
{
    if (!event)
        return false;
    return event.type == NSEventTypeRightMouseDown
        || (event.type == NSEventTypeLeftMouseDown
            && (event.modifierFlags & NSEventModifierFlagControl) != 0);
}

} // namespace

@implementation CorvaneStatusTarget {
    NSStatusBarButton *_button;
    NSColor *_plate;
    corvane::StatusActions _actions;
}

- (instancetype)initWithButton:(NSStatusBarButton *)button
                       actions:(corvane::StatusActions)actions
                         plate:(NSColor *)plate
{
    self = [super init];
    if (self) {
        _button = button;
        _plate = plate;
        _actions = std::move(actions);
        _button.wantsLayer = YES;
        _button.target = self;
        _button.action = @selector(clicked:);
        [_button sendActionOn:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown];
        [_button addObserver:self
                  forKeyPath:appearanceKey
                     options:NSKeyValueObservingOptionInitial
                     context:nullptr];
    }
    return self;
}

- (void)clicked:(id)sender
{
    const auto &action = wantsMenu(NSApp.currentEvent) ? _actions.menu : _actions.open;
    if (action)
        action(placeOf(_button));
}

- (void)observeValueForKeyPath:(NSString *)keyPath
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context
{
    NSArray *kinds = @[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ];
    NSString *kind = [_button.effectiveAppearance bestMatchFromAppearancesWithNames:kinds];
    const bool isLight = [kind isEqualToString:NSAppearanceNameAqua];
    _button.layer.cornerRadius = 5;
    _button.layer.backgroundColor = isLight ? _plate.CGColor : nullptr;
}

- (void)stop
{
    [_button removeObserver:self forKeyPath:appearanceKey];
    _button.target = nil;
}

@end

namespace corvane {

struct StatusItem::Native {
    NSStatusItem *item;
    NSFont *font;
    CorvaneStatusTarget *target;
};

StatusItem::StatusItem(StatusActions actions, const StatusColor &plate)
{
    assertMainThread();
    [NSApplication sharedApplication]; // The status bar does not exist without one.
    NSStatusItem *item =
        [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
    item.button.accessibilityTitle = @"Corvane";
    item.button.accessibilityLabel = @"Corvane";
    CorvaneStatusTarget *target = [[CorvaneStatusTarget alloc] initWithButton:item.button
                                                                      actions:std::move(actions)
                                                                        plate:nativeColor(plate)];
    m_native.reset(new Native{item, labelFont(), target});
}

StatusItem::~StatusItem()
{
    [m_native->target stop];
    [NSStatusBar.systemStatusBar removeStatusItem:m_native->item];
}

void StatusItem::show(const std::vector<StatusRun> &runs, const std::string &words)
{
    NSMutableAttributedString *title = [[NSMutableAttributedString alloc] init];
    for (const StatusRun &run : runs)
        [title appendAttributedString:nativeRun(run, m_native->font)];
    NSStatusBarButton *button = m_native->item.button;
    button.attributedTitle = title;
    button.accessibilityValue = nativeText(words);
    button.toolTip = nativeText(words);
}

} // namespace corvane
