#pragma once

// The part of AppKit that this program uses, declared for machines without it.

#import <Foundation/Foundation.h>

extern "C" {

extern NSString *const NSFontAttributeName;
extern NSString *const NSForegroundColorAttributeName;
extern NSString *const NSKernAttributeName;

extern NSString *const NSAppearanceNameAqua;
extern NSString *const NSAppearanceNameDarkAqua;

extern NSString *const NSFontDescriptorSystemDesignRounded;
extern const CGFloat NSFontWeightLight;
extern const CGFloat NSFontWeightMedium;
extern const CGFloat NSFontWeightSemibold;
extern const CGFloat NSFontWeightBold;

extern NSString *const NSDeviceRGBColorSpace;

extern NSString *const NSAboutPanelOptionCredits;
extern NSString *const NSAboutPanelOptionApplicationName;
extern NSString *const NSAboutPanelOptionVersion;
extern NSString *const NSAboutPanelOptionApplicationVersion;

extern NSString *const NSApplicationWillFinishLaunchingNotification;
extern NSString *const NSWindowWillCloseNotification;

} // extern "C"

static const CGFloat NSVariableStatusItemLength = -1;

enum NSEventType : NSUInteger { NSEventTypeLeftMouseDown = 1, NSEventTypeRightMouseDown = 3 };

typedef unsigned long long NSEventMask;
enum : NSEventMask {
    NSEventMaskLeftMouseDown = 1ULL << NSEventTypeLeftMouseDown,
    NSEventMaskRightMouseDown = 1ULL << NSEventTypeRightMouseDown,
};

typedef NSUInteger NSEventModifierFlags;
enum : NSEventModifierFlags { NSEventModifierFlagControl = 1 << 18 };

enum NSApplicationActivationPolicy : NSInteger {
    NSApplicationActivationPolicyRegular,
    NSApplicationActivationPolicyAccessory,
};

typedef NSUInteger NSWindowStyleMask;
enum : NSWindowStyleMask {
    NSWindowStyleMaskTitled = 1 << 0,
    NSWindowStyleMaskClosable = 1 << 1,
    NSWindowStyleMaskMiniaturizable = 1 << 2,
    NSWindowStyleMaskResizable = 1 << 3,
    NSWindowStyleMaskNonactivatingPanel = 1 << 7,
    NSWindowStyleMaskFullScreen = 1 << 14,
};

typedef NSInteger NSWindowLevel;
static const NSWindowLevel NSPopUpMenuWindowLevel = 101;

typedef NSUInteger NSWindowCollectionBehavior;
enum : NSWindowCollectionBehavior {
    NSWindowCollectionBehaviorMoveToActiveSpace = 1 << 1,
    NSWindowCollectionBehaviorTransient = 1 << 3,
    NSWindowCollectionBehaviorFullScreenPrimary = 1 << 7,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};

enum NSWindowButton : NSUInteger { NSWindowZoomButton = 2 };

enum NSWindowTitleVisibility : NSInteger { NSWindowTitleHidden = 1 };

@class NSButton, NSMenu, NSWindow;

@interface NSColorSpace : NSObject
@property (class, readonly, strong) NSColorSpace *sRGBColorSpace;
@end

@interface NSColor : NSObject
+ (NSColor *)colorWithSRGBRed:(CGFloat)red
                        green:(CGFloat)green
                         blue:(CGFloat)blue
                        alpha:(CGFloat)alpha;
@property (class, readonly, strong) NSColor *secondaryLabelColor;
@property (readonly) CGFloat redComponent;
@property (readonly) CGFloat greenComponent;
@property (readonly) CGFloat blueComponent;
@property (readonly) CGFloat alphaComponent;
- (NSColor *)colorUsingColorSpace:(NSColorSpace *)space;
- (void)setFill;
@end

@interface NSFontDescriptor : NSObject
- (NSFontDescriptor *)fontDescriptorWithDesign:(NSString *)design;
@end

@interface NSFont : NSObject
+ (NSFont *)systemFontOfSize:(CGFloat)size;
+ (NSFont *)systemFontOfSize:(CGFloat)size weight:(CGFloat)weight;
+ (NSFont *)fontWithDescriptor:(NSFontDescriptor *)descriptor size:(CGFloat)size;
@property (readonly, strong) NSFontDescriptor *fontDescriptor;
@property (readonly, copy) NSString *familyName;
@end

@interface NSAttributedString (Drawing)
- (NSSize)size;
- (void)drawAtPoint:(NSPoint)point;
@end

@interface NSBezierPath : NSObject
+ (NSBezierPath *)bezierPathWithRoundedRect:(NSRect)rect
                                    xRadius:(CGFloat)xRadius
                                    yRadius:(CGFloat)yRadius;
- (void)fill;
@end

@interface NSAppearance : NSObject
+ (NSAppearance *)appearanceNamed:(NSString *)name;
- (NSString *)bestMatchFromAppearancesWithNames:(NSArray<NSString *> *)names;
- (void)performAsCurrentDrawingAppearance:(void (^)(void))block;
@end

@interface NSImageSymbolConfiguration : NSObject
+ (instancetype)configurationWithPointSize:(CGFloat)size weight:(CGFloat)weight;
@end

@interface NSImage : NSObject
+ (instancetype)imageWithSystemSymbolName:(NSString *)name
                 accessibilityDescription:(NSString *)description;
+ (NSImage *)imageWithSize:(NSSize)size
                   flipped:(BOOL)flipped
            drawingHandler:(BOOL (^)(NSRect rect))handler;
- (NSImage *)imageWithSymbolConfiguration:(NSImageSymbolConfiguration *)configuration;
@property NSSize size;
- (void)drawInRect:(NSRect)rect;
@end

@interface NSBitmapImageRep : NSObject
- (instancetype)initWithBitmapDataPlanes:(unsigned char **)planes
                              pixelsWide:(NSInteger)width
                              pixelsHigh:(NSInteger)height
                           bitsPerSample:(NSInteger)bitsPerSample
                         samplesPerPixel:(NSInteger)samplesPerPixel
                                hasAlpha:(BOOL)hasAlpha
                                isPlanar:(BOOL)isPlanar
                          colorSpaceName:(NSString *)colorSpaceName
                             bytesPerRow:(NSInteger)bytesPerRow
                            bitsPerPixel:(NSInteger)bitsPerPixel;
@end

@interface NSGraphicsContext : NSObject
+ (NSGraphicsContext *)graphicsContextWithBitmapImageRep:(NSBitmapImageRep *)bitmap;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@property (class, strong) NSGraphicsContext *currentContext;
- (void)flushGraphics;
@end

@interface NSScreen : NSObject
@property (class, readonly, copy) NSArray<NSScreen *> *screens;
@property (readonly) NSRect frame;
@end

@interface NSEvent : NSObject
@property (readonly) NSEventType type;
@property (readonly) NSEventModifierFlags modifierFlags;
@end

@interface NSResponder : NSObject
@end

@interface NSView : NSResponder
@property (readonly, assign) NSWindow *window;
@property NSRect bounds;
@property (copy) NSString *toolTip;
@property (readonly, strong) NSAppearance *effectiveAppearance;
@property (copy) NSString *accessibilityTitle;
@property (copy) NSString *accessibilityLabel;
@property (strong) id accessibilityValue;
- (NSRect)convertRect:(NSRect)rect toView:(NSView *)view;
@end

@interface NSControl : NSView
@property (weak) id target;
@property SEL action;
@property (getter=isEnabled) BOOL enabled;
- (NSInteger)sendActionOn:(NSEventMask)mask;
- (void)performClick:(id)sender;
@end

@interface NSText : NSView
- (void)copy:(id)sender;
- (void)selectAll:(id)sender;
@end

@interface NSButton : NSControl
@property (strong) NSImage *image;
@end

@interface NSStatusBarButton : NSButton
@end

@interface NSStatusItem : NSObject
@property (readonly, strong) NSStatusBarButton *button;
@property (strong) NSMenu *menu;
@end

@interface NSStatusBar : NSObject
@property (class, readonly, strong) NSStatusBar *systemStatusBar;
- (NSStatusItem *)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem *)item;
@end

@interface NSMenu : NSObject
@end

@interface NSWindow : NSResponder
@property NSWindowStyleMask styleMask;
@property NSWindowLevel level;
@property BOOL hasShadow;
@property (readonly, getter=isVisible) BOOL visible;
@property (readonly, getter=isMiniaturized) BOOL miniaturized;
@property (readonly) NSResponder *firstResponder;
@property NSWindowCollectionBehavior collectionBehavior;
@property (copy) NSColor *backgroundColor;
@property (strong) NSAppearance *appearance;
@property BOOL titlebarAppearsTransparent;
@property NSWindowTitleVisibility titleVisibility;
- (NSButton *)standardWindowButton:(NSWindowButton)button;
- (NSRect)convertRectToScreen:(NSRect)rect;
- (void)makeKeyAndOrderFront:(id)sender;
- (void)performClose:(id)sender;
- (void)performMiniaturize:(id)sender;
- (void)performZoom:(id)sender;
- (void)toggleFullScreen:(id)sender;
@end

@interface NSApplication : NSObject
@property (class, readonly, strong) NSApplication *sharedApplication;
@property (readonly, strong) NSEvent *currentEvent;
@property (readonly, getter=isActive) BOOL active;
@property (readonly, getter=isHidden) BOOL hidden;
@property (readonly, strong) NSWindow *keyWindow;
@property (readonly, copy) NSArray<NSWindow *> *windows;
@property (strong) NSMenu *windowsMenu;
@property (strong) NSMenu *helpMenu;
- (void)hide:(id)sender;
- (void)unhideWithoutActivation;
- (void)arrangeInFront:(id)sender;
- (BOOL)sendAction:(SEL)action to:(id)target from:(id)sender;
- (NSApplicationActivationPolicy)activationPolicy;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activateIgnoringOtherApps:(BOOL)ignoringOtherApps;
- (void)orderFrontStandardAboutPanelWithOptions:(NSDictionary<NSString *, id> *)options;
@end

extern "C" NSApplication *NSApp;
