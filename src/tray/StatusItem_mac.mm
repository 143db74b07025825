#include "tray/StatusItem_mac.h"

#include "platform/NativeText_mac.h"
#include "threads/MainThread.h"

#import <AppKit/AppKit.h>

#include <cmath>
#include <utility>

// A button sends its clicks to an Objective-C object, which calls the handlers. The same object
// observes whether the bar is light, which changes with the desktop picture behind it.

/// The target of the item's button; owned by the item.
@interface CorvaneStatusTarget : NSObject {
    NSStatusItem *_item;
    NSColor *_plate;
    NSAttributedString *_text;
    corvane::StatusActions _actions;
}
- (instancetype)initWithItem:(NSStatusItem *)item
                     actions:(corvane::StatusActions)actions
                       plate:(NSColor *)plate;
- (void)clicked:(id)sender;
- (void)showText:(NSAttributedString *)text;
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

/// The item places its menu and looks pressed while it is open, which is until this returns.
void showMenu(NSStatusItem *item, NSMenu *menu)
{
    item.menu = menu;
    [item.button performClick:nil];
    item.menu = nil; // Otherwise a plain click would open it too.
}

bool isLight(NSAppearance *appearance)
{
    NSArray *kinds = @[ NSAppearanceNameAqua, NSAppearanceNameDarkAqua ];
    return
        [[appearance bestMatchFromAppearancesWithNames:kinds] isEqualToString:NSAppearanceNameAqua];
}

/// The text as a picture, which the system draws at the scale of each screen; on a plate unless
/// that is nil.
NSImage *picture(NSAttributedString *text, NSColor *plate)
{
    constexpr CGFloat height = 18;
    constexpr CGFloat platePadding = 6;
    constexpr CGFloat plateRadius = 5;
    const NSSize textSize = text.size;
    const CGFloat padding = plate ? platePadding : 0;
    const NSSize size = {std::ceil(textSize.width) + 2 * padding, height};
    return [NSImage imageWithSize:size
                          flipped:NO
                   drawingHandler:^BOOL(NSRect place) {
                       if (plate) {
                           [plate setFill];
                           [[NSBezierPath bezierPathWithRoundedRect:place
                                                            xRadius:plateRadius
                                                            yRadius:plateRadius] fill];
                       }
                       [text drawAtPoint:{padding, (height - textSize.height) / 2}];
                       return YES;
                   }];
}

} // namespace

@implementation CorvaneStatusTarget

- (instancetype)initWithItem:(NSStatusItem *)item
                     actions:(corvane::StatusActions)actions
                       plate:(NSColor *)plate
{
    self = [super init];
    if (self) {
        _item = item;
        _plate = plate;
        _actions = std::move(actions);
        NSStatusBarButton *button = _item.button;
        button.target = self;
        button.action = @selector(clicked:);
        [button sendActionOn:NSEventMaskLeftMouseDown | NSEventMaskRightMouseDown];
        [button addObserver:self forKeyPath:appearanceKey options:0 context:nullptr];
    }
    return self;
}

- (void)clicked:(id)sender
{
    // An action may delete the item, and with it this object.
    const corvane::StatusActions actions = _actions;
    if (wantsMenu(NSApp.currentEvent))
        showMenu(_item, (__bridge NSMenu *)actions.menu());
    else
        actions.open(placeOf(_item.button));
}

- (void)showText:(NSAttributedString *)text
{
    _text = text;
    [self redraw];
}

- (void)redraw
{
    NSStatusBarButton *button = _item.button;
    if (_text)
        button.image = picture(_text, isLight(button.effectiveAppearance) ? _plate : nil);
}

- (void)observeValueForKeyPath:(NSString *)keyPath
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context
{
    [self redraw];
}

- (void)stop
{
    NSStatusBarButton *button = _item.button;
    [button removeObserver:self forKeyPath:appearanceKey];
    button.target = nil;
}

@end

namespace corvane {

struct StatusItem::Native {
    NSStatusItem *item;
    NSFont *font;
    CorvaneStatusTarget *target;
    std::string words; ///< Set last.
};

StatusItem::StatusItem(StatusActions actions, const StatusColor &plate)
{
    assertMainThread();
    [NSApplication sharedApplication]; // The status bar does not exist without one.
    NSStatusItem *item =
        [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
    item.button.accessibilityTitle = @"Corvane";
    item.button.accessibilityLabel = @"Corvane";
    CorvaneStatusTarget *target = [[CorvaneStatusTarget alloc] initWithItem:item
                                                                    actions:std::move(actions)
                                                                      plate:nativeColor(plate)];
    m_native.reset(new Native{item, labelFont(), target, {}});
}

StatusItem::~StatusItem()
{
    [m_native->target stop];
    [NSStatusBar.systemStatusBar removeStatusItem:m_native->item];
}

void StatusItem::show(const std::vector<StatusRun> &runs, const std::string &words)
{
    @autoreleasepool { // The event loop empties its own only when it is idle for long.
        NSMutableAttributedString *text = [[NSMutableAttributedString alloc] init];
        for (const StatusRun &run : runs)
            [text appendAttributedString:nativeRun(run, m_native->font)];
        [m_native->target showText:text];
        if (m_native->words == words)
            return;
        // Each of the two is a message to another process.
        m_native->words = words;
        NSStatusBarButton *button = m_native->item.button;
        button.accessibilityValue = nativeText(words);
        button.toolTip = nativeText(words);
    }
}

} // namespace corvane
