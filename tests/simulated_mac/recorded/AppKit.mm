// The classes of AppKit that the Objective-C sources send messages to. Objects are never freed.

#include "simulated_mac/recorded/Desktop.h"
#include "simulated_mac/recorded/Messages.h"

#import <AppKit/AppKit.h>

#include <Block.h>
#include <map>

using namespace corvane::simulated;

NSString *const NSFontAttributeName = @"font";
NSString *const NSForegroundColorAttributeName = @"color";
NSString *const NSKernAttributeName = @"kern";
NSString *const NSAppearanceNameAqua = @"Aqua";
NSString *const NSAppearanceNameDarkAqua = @"DarkAqua";
NSString *const NSFontDescriptorSystemDesignRounded = @"rounded";
NSString *const NSDeviceRGBColorSpace = @"device";
NSString *const NSAboutPanelOptionCredits = @"Credits";
NSString *const NSAboutPanelOptionApplicationName = @"ApplicationName";
NSString *const NSAboutPanelOptionVersion = @"Version";
NSString *const NSAboutPanelOptionApplicationVersion = @"ApplicationVersion";
NSString *const NSApplicationWillFinishLaunchingNotification =
    @"NSApplicationWillFinishLaunchingNotification";
NSString *const NSWindowWillCloseNotification = @"NSWindowWillCloseNotification";
const CGFloat NSFontWeightLight = -0.4;
const CGFloat NSFontWeightMedium = 0.23;
const CGFloat NSFontWeightSemibold = 0.3;
const CGFloat NSFontWeightBold = 0.4;

extern "C" const char *sel_getName(SEL message);

NSApplication *NSApp = nil;

namespace {

/// What AppKit's objects hold, which have no room of their own for it.
struct Objects {
    std::map<id, std::vector<double>> numbers = {}; ///< Of colours, fonts, sizes, paths.
    std::map<id, std::string> names = {};           ///< Of fonts and appearances.
    std::map<id, BOOL (^)(NSRect)> drawings = {};   ///< Of pictures.
    std::map<id, WindowState> windows = {};
    std::vector<id> windowOrder = {};
    std::map<id, NSButton *> zoomButtons = {};
    NSEvent *currentEvent = nil;
    NSEventType eventType = NSEventTypeLeftMouseDown;
    NSEventModifierFlags modifiers = 0;
    NSApplicationActivationPolicy policy = NSApplicationActivationPolicyAccessory;
    NSString *appearance = @"Aqua"; ///< Of what is drawn now.
    NSImage *picture = nil;         ///< The item's.
    id target = nil;                ///< The item's.
    SEL action = nullptr;
    NSEventMask actionEvents = 0;
};

Objects &objects()
{
    static auto *const all = new Objects; // What it refers to stays in reach to the end.
    return *all;
}

NSStatusItem *theItem()
{
    static NSStatusItem *const item = [[NSStatusItem alloc] init];
    return item;
}

template <typename Kind>
Kind *withNumbers(Kind *made, std::vector<double> numbers)
{
    objects().numbers[made] = std::move(numbers);
    return made;
}

std::string list(const std::vector<double> &numbers)
{
    std::string text;
    for (const double number : numbers)
        text += (text.empty() ? "" : " ") + described(number);
    return text;
}

} // namespace

Desktop &corvane::simulated::desktop()
{
    static Desktop one;
    return one;
}

void corvane::simulated::resetDesktop()
{
    desktop() = {};
    objects().windows.clear();
    objects().windowOrder.clear();
    objects().policy = NSApplicationActivationPolicyAccessory;
    takeMessages();
}

void corvane::simulated::useApplication()
{
    [NSApplication sharedApplication];
}

bool corvane::simulated::clickItem(ItemClick click)
{
    Objects &all = objects();
    const bool isRight = click == ItemClick::right;
    all.eventType = isRight ? NSEventTypeRightMouseDown : NSEventTypeLeftMouseDown;
    all.modifiers = click == ItemClick::withControl ? NSEventModifierFlagControl : 0;
    all.currentEvent = click == ItemClick::accessibility ? nil : [[NSEvent alloc] init];
    if (!all.target || !(all.actionEvents & (1ULL << all.eventType)))
        return false;
    send(all.target, all.action, theItem().button);
    return true;
}

void corvane::simulated::makeBarLight(bool isLight)
{
    desktop().barIsLight = isLight;
    changed(theItem().button, "effectiveAppearance");
}

std::string corvane::simulated::drawItem()
{
    NSImage *const picture = objects().picture;
    if (!picture)
        return {};
    const std::vector<double> &size = objects().numbers[picture];
    objects().drawings[picture]({{0, 0}, {size[0], size[1]}});
    return list(size);
}

void *corvane::simulated::addWindow(const WindowState &state)
{
    const id window = [[NSWindow alloc] init];
    objects().windows[window] = state;
    objects().windowOrder.push_back(window);
    return window;
}

WindowState &corvane::simulated::stateOf(void *window)
{
    return objects().windows.at(static_cast<id>(window));
}

void *corvane::simulated::makeMenu()
{
    return [[NSMenu alloc] init];
}

@implementation NSResponder
@end

@implementation NSMenu
@end

@implementation NSColorSpace
+ (NSColorSpace *)sRGBColorSpace
{
    static NSColorSpace *const space = [[NSColorSpace alloc] init];
    return space;
}
@end

@implementation NSColor
+ (NSColor *)colorWithSRGBRed:(CGFloat)red
                        green:(CGFloat)green
                         blue:(CGFloat)blue
                        alpha:(CGFloat)alpha
{
    return withNumbers([[NSColor alloc] init], {red, green, blue, alpha});
}
+ (NSColor *)secondaryLabelColor
{
    const double gray = [objects().appearance isEqualToString:NSAppearanceNameDarkAqua] ? 1 : 0;
    return withNumbers([[NSColor alloc] init], {gray, gray, gray, 0.55});
}
- (NSColor *)colorUsingColorSpace:(NSColorSpace *)space
{
    return space ? self : nil;
}
- (CGFloat)redComponent
{
    return objects().numbers[self][0];
}
- (CGFloat)greenComponent
{
    return objects().numbers[self][1];
}
- (CGFloat)blueComponent
{
    return objects().numbers[self][2];
}
- (CGFloat)alphaComponent
{
    return objects().numbers[self][3];
}
- (void)setFill
{
    record("fill with " + list(objects().numbers[self]));
}
@end

@implementation NSFontDescriptor
- (NSFontDescriptor *)fontDescriptorWithDesign:(NSString *)design
{
    if (!desktop().hasRoundedFont)
        return nil;
    objects().names[self] = described(design);
    return self;
}
@end

@implementation NSFont
+ (NSFont *)systemFontOfSize:(CGFloat)size
{
    return [self systemFontOfSize:size weight:0];
}
+ (NSFont *)systemFontOfSize:(CGFloat)size weight:(CGFloat)weight
{
    NSFont *const font = withNumbers([[NSFont alloc] init], {size, weight});
    describe(font, "NSFont " + list({size, weight}));
    return font;
}
+ (NSFont *)fontWithDescriptor:(NSFontDescriptor *)descriptor size:(CGFloat)size
{
    NSFont *const font = withNumbers([[NSFont alloc] init], objects().numbers[descriptor]);
    objects().numbers[font][0] = size;
    objects().names[font] = objects().names[descriptor];
    return font;
}
- (NSFontDescriptor *)fontDescriptor
{
    return withNumbers([[NSFontDescriptor alloc] init], objects().numbers[self]);
}
- (NSString *)familyName
{
    return objects().names[self] == "rounded" ? @".AppleSystemUIFontRounded"
                                              : @".AppleSystemUIFont";
}
@end

@implementation NSBezierPath
+ (NSBezierPath *)bezierPathWithRoundedRect:(NSRect)rect
                                    xRadius:(CGFloat)xRadius
                                    yRadius:(CGFloat)yRadius
{
    return withNumbers(
        [[NSBezierPath alloc] init],
        {rect.origin.x, rect.origin.y, rect.size.width, rect.size.height, xRadius, yRadius});
}
- (void)fill
{
    record("fill rounded " + list(objects().numbers[self]));
}
@end

@implementation NSAppearance
+ (NSAppearance *)appearanceNamed:(NSString *)name
{
    NSAppearance *const made = [[NSAppearance alloc] init];
    objects().names[made] = described(name);
    return made;
}
- (NSString *)bestMatchFromAppearancesWithNames:(NSArray<NSString *> *)names
{
    for (NSString *each in names) {
        if (objects().names[self] == described(each))
            return each;
    }
    return nil;
}
- (void)performAsCurrentDrawingAppearance:(void (^)(void))block
{
    NSString *const before = objects().appearance;
    objects().appearance = [NSString stringWithUTF8String:objects().names[self].c_str()];
    block();
    objects().appearance = before;
}
@end

@implementation NSImageSymbolConfiguration
+ (instancetype)configurationWithPointSize:(CGFloat)size weight:(CGFloat)weight
{
    record("NSImageSymbolConfiguration size " + described(size) + " weight " + described(weight));
    return [[self alloc] init];
}
@end

@implementation NSImage
+ (instancetype)imageWithSystemSymbolName:(NSString *)name
                 accessibilityDescription:(NSString *)description
{
    (void)description;
    return described(name) == desktop().symbol ? [[self alloc] init] : nil;
}
+ (NSImage *)imageWithSize:(NSSize)size
                   flipped:(BOOL)flipped
            drawingHandler:(BOOL (^)(NSRect))handler
{
    (void)flipped;
    NSImage *const image = withNumbers([[NSImage alloc] init], {size.width, size.height});
    objects().drawings[image] = Block_copy(handler);
    return image;
}
- (NSImage *)imageWithSymbolConfiguration:(NSImageSymbolConfiguration *)configuration
{
    (void)configuration;
    return self;
}
- (NSSize)size
{
    return {desktop().symbolWidth, desktop().symbolHeight};
}
- (void)drawInRect:(NSRect)rect
{
    record(self,
           "drawInRect:" + list({rect.origin.x, rect.origin.y, rect.size.width, rect.size.height}));
}
@end

@implementation NSBitmapImageRep
- (instancetype)initWithBitmapDataPlanes:(unsigned char **)planes
                              pixelsWide:(NSInteger)width
                              pixelsHigh:(NSInteger)height
                           bitsPerSample:(NSInteger)bitsPerSample
                         samplesPerPixel:(NSInteger)samplesPerPixel
                                hasAlpha:(BOOL)hasAlpha
                                isPlanar:(BOOL)isPlanar
                          colorSpaceName:(NSString *)colorSpaceName
                             bytesPerRow:(NSInteger)bytesPerRow
                            bitsPerPixel:(NSInteger)bitsPerPixel
{
    const bool isRGBA = *planes && bitsPerSample == 8 && samplesPerPixel == 4 && hasAlpha
        && !isPlanar && bytesPerRow == 4 * width && bitsPerPixel == 32;
    record(self,
           std::to_string(width) + "x" + std::to_string(height) + (isRGBA ? " RGBA " : " ")
               + described(colorSpaceName));
    return self;
}
@end

@implementation NSGraphicsContext
+ (NSGraphicsContext *)graphicsContextWithBitmapImageRep:(NSBitmapImageRep *)bitmap
{
    return bitmap ? [[NSGraphicsContext alloc] init] : nil;
}
+ (void)saveGraphicsState
{
    record("NSGraphicsContext saveGraphicsState");
}
+ (void)restoreGraphicsState
{
    record("NSGraphicsContext restoreGraphicsState");
}
+ (NSGraphicsContext *)currentContext
{
    return nil;
}
+ (void)setCurrentContext:(NSGraphicsContext *)context
{
    record("NSGraphicsContext setCurrentContext:" + described(context));
}
- (void)flushGraphics
{
    record(self, "flushGraphics");
}
@end

@implementation NSScreen
+ (NSArray<NSScreen *> *)screens
{
    const id screen = [[NSScreen alloc] init];
    return [NSArray arrayWithObjects:&screen count:desktop().hasScreen ? 1 : 0];
}
- (NSRect)frame
{
    return {{0, 0}, {1440, 900}};
}
@end

@implementation NSEvent
- (NSEventType)type
{
    return objects().eventType;
}
- (NSEventModifierFlags)modifierFlags
{
    return objects().modifiers;
}
@end

@implementation NSView
- (NSWindow *)window
{
    static NSWindow *const barWindow = [[NSWindow alloc] init];
    return barWindow;
}
- (NSRect)bounds
{
    return {{0, 0}, {80, 24}};
}
- (NSRect)convertRect:(NSRect)rect toView:(NSView *)view
{
    (void)view;
    return rect;
}
- (NSAppearance *)effectiveAppearance
{
    return [NSAppearance
        appearanceNamed:desktop().barIsLight ? NSAppearanceNameAqua : NSAppearanceNameDarkAqua];
}
- (void)setToolTip:(NSString *)toolTip
{
    record(self, "setToolTip:" + described(toolTip));
}
- (void)setAccessibilityTitle:(NSString *)title
{
    record(self, "setAccessibilityTitle:" + described(title));
}
- (void)setAccessibilityLabel:(NSString *)label
{
    record(self, "setAccessibilityLabel:" + described(label));
}
- (void)setAccessibilityValue:(id)value
{
    record(self, "setAccessibilityValue:" + described(value));
}
@end

@implementation NSText
@end

@implementation NSControl
- (void)setTarget:(id)target
{
    objects().target = target;
}
- (void)setAction:(SEL)action
{
    objects().action = action;
}
- (NSInteger)sendActionOn:(NSEventMask)mask
{
    objects().actionEvents = mask;
    return 0;
}
- (void)setEnabled:(BOOL)enabled
{
    record(self, std::string("setEnabled:") + (enabled ? "YES" : "NO"));
}
- (void)performClick:(id)sender
{
    record(self, "performClick:" + described(sender));
}
@end

@implementation NSButton
- (void)setImage:(NSImage *)image
{
    objects().picture = image;
    record(self, "setImage: in " + std::to_string(openPools()) + " pools");
}
@end

@implementation NSStatusBarButton
@end

@implementation NSStatusItem
- (NSStatusBarButton *)button
{
    static NSStatusBarButton *const button = [[NSStatusBarButton alloc] init];
    return button;
}
- (void)setMenu:(NSMenu *)menu
{
    record(self, "setMenu:" + described(menu));
}
@end

@implementation NSStatusBar
+ (NSStatusBar *)systemStatusBar
{
    static NSStatusBar *const bar = [[NSStatusBar alloc] init];
    return bar;
}
- (NSStatusItem *)statusItemWithLength:(CGFloat)length
{
    record(self, "statusItemWithLength:" + described(length));
    return theItem();
}
- (void)removeStatusItem:(NSStatusItem *)item
{
    record(self, "removeStatusItem:" + described(item));
}
@end

@implementation NSWindow
- (NSWindowStyleMask)styleMask
{
    return objects().windows[self].styleMask;
}
- (void)setStyleMask:(NSWindowStyleMask)mask
{
    objects().windows[self].styleMask = mask;
    record(self, "setStyleMask:" + std::to_string(mask));
}
- (BOOL)respondsToSelector:(SEL)message
{
    return desktop().preventsActivation
        || sel_getName(message) != std::string("_setPreventsActivation:");
}
- (void)_setPreventsActivation:(BOOL)prevents
{
    record(self, std::string("_setPreventsActivation:") + (prevents ? "YES" : "NO"));
}
- (void)setLevel:(NSWindowLevel)level
{
    record(self, "setLevel:" + std::to_string(level));
}
- (void)setHasShadow:(BOOL)hasShadow
{
    record(self, std::string("setHasShadow:") + (hasShadow ? "YES" : "NO"));
}
- (NSWindowCollectionBehavior)collectionBehavior
{
    return objects().windows[self].collectionBehavior;
}
- (void)setCollectionBehavior:(NSWindowCollectionBehavior)behavior
{
    objects().windows[self].collectionBehavior = behavior;
    record(self, "setCollectionBehavior:" + std::to_string(behavior));
}
- (BOOL)isVisible
{
    return objects().windows[self].isVisible;
}
- (BOOL)isMiniaturized
{
    return objects().windows[self].isMiniaturized;
}
- (NSResponder *)firstResponder
{
    return objects().windows[self].focusIsOnText ? [[NSText alloc] init] : [[NSView alloc] init];
}
- (void)setBackgroundColor:(NSColor *)color
{
    record(self, "setBackgroundColor:" + list(objects().numbers[color]));
}
- (void)setAppearance:(NSAppearance *)appearance
{
    record(self, "setAppearance:" + objects().names[appearance]);
}
- (void)setTitlebarAppearsTransparent:(BOOL)transparent
{
    record(self, std::string("setTitlebarAppearsTransparent:") + (transparent ? "YES" : "NO"));
}
- (void)setTitleVisibility:(NSWindowTitleVisibility)visibility
{
    record(self, "setTitleVisibility:" + std::to_string(visibility));
}
- (NSButton *)standardWindowButton:(NSWindowButton)button
{
    record(self, "standardWindowButton:" + std::to_string(button));
    return [[NSButton alloc] init];
}
- (NSRect)convertRectToScreen:(NSRect)rect
{
    return {{rect.origin.x + 600, rect.origin.y + 876}, rect.size};
}
- (void)makeKeyAndOrderFront:(id)sender
{
    desktop().keyWindow = self;
    record(self, "makeKeyAndOrderFront:" + described(sender));
}
@end

@implementation NSApplication
+ (NSApplication *)sharedApplication
{
    if (!NSApp)
        NSApp = [[NSApplication alloc] init];
    return NSApp;
}
- (NSEvent *)currentEvent
{
    return objects().currentEvent;
}
- (BOOL)isActive
{
    return desktop().isActive;
}
- (BOOL)isHidden
{
    return desktop().isHidden;
}
- (NSWindow *)keyWindow
{
    return static_cast<NSWindow *>(desktop().keyWindow);
}
- (NSArray<NSWindow *> *)windows
{
    const auto &all = objects().windowOrder;
    return [NSArray arrayWithObjects:all.data() count:all.size()];
}
- (void)setWindowsMenu:(NSMenu *)menu
{
    record(self, "setWindowsMenu:" + described(menu));
}
- (void)setHelpMenu:(NSMenu *)menu
{
    record(self, "setHelpMenu:" + described(menu));
}
- (void)hide:(id)sender
{
    desktop().isHidden = true;
    desktop().isActive = false;
    record(self, "hide:" + described(sender));
}
- (void)unhideWithoutActivation
{
    desktop().isHidden = false;
    record(self, "unhideWithoutActivation");
}
- (BOOL)sendAction:(SEL)action to:(id)target from:(id)sender
{
    record(self,
           std::string("sendAction:") + sel_getName(action) + " to:" + described(target)
               + " from:" + described(sender));
    return YES;
}
- (NSApplicationActivationPolicy)activationPolicy
{
    return objects().policy;
}
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy
{
    objects().policy = policy;
    record(self, "setActivationPolicy:" + std::to_string(policy));
    return YES;
}
- (void)activateIgnoringOtherApps:(BOOL)ignoringOtherApps
{
    desktop().isActive = true;
    desktop().isHidden = false;
    record(self, std::string("activateIgnoringOtherApps:") + (ignoringOtherApps ? "YES" : "NO"));
}
- (void)orderFrontStandardAboutPanelWithOptions:(NSDictionary<NSString *, id> *)options
{
    record(self, "orderFrontStandardAboutPanelWithOptions:" + described(options));
}
@end
