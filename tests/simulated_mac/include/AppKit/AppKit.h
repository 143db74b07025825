#pragma once

// The part of AppKit that this program uses, declared for machines without it.

#import <Foundation/Foundation.h>
#import <QuartzCore/QuartzCore.h>

extern "C" {

extern NSString *const NSFontAttributeName;
extern NSString *const NSForegroundColorAttributeName;
extern NSString *const NSKernAttributeName;

extern NSString *const NSAppearanceNameAqua;
extern NSString *const NSAppearanceNameDarkAqua;

extern NSString *const NSFontDescriptorSystemDesignRounded;
extern const CGFloat NSFontWeightMedium;
extern const CGFloat NSFontWeightSemibold;

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

typedef NSUInteger NSWindowCollectionBehavior;
enum : NSWindowCollectionBehavior {
    NSWindowCollectionBehaviorFullScreenPrimary = 1 << 7,
    NSWindowCollectionBehaviorFullScreenAuxiliary = 1 << 8,
};

enum NSWindowButton : NSUInteger { NSWindowZoomButton = 2 };

enum NSWindowTitleVisibility : NSInteger { NSWindowTitleHidden = 1 };

@class NSButton, NSWindow;

@interface NSColor : NSObject
+ (NSColor *)colorWithSRGBRed:(CGFloat)red
                        green:(CGFloat)green
                         blue:(CGFloat)blue
                        alpha:(CGFloat)alpha;
@property (class, readonly, strong) NSColor *secondaryLabelColor;
@property (readonly) CGColorRef CGColor;
@end

@interface NSFontDescriptor : NSObject
- (NSFontDescriptor *)fontDescriptorWithDesign:(NSString *)design;
@end

@interface NSFont : NSObject
+ (NSFont *)systemFontOfSize:(CGFloat)size;
+ (NSFont *)systemFontOfSize:(CGFloat)size weight:(CGFloat)weight;
+ (NSFont *)fontWithDescriptor:(NSFontDescriptor *)descriptor size:(CGFloat)size;
@property (readonly, strong) NSFontDescriptor *fontDescriptor;
@end

@interface NSAppearance : NSObject
+ (NSAppearance *)appearanceNamed:(NSString *)name;
- (NSString *)bestMatchFromAppearancesWithNames:(NSArray<NSString *> *)names;
@end

@interface NSImageSymbolConfiguration : NSObject
+ (instancetype)configurationWithPointSize:(CGFloat)size weight:(CGFloat)weight;
@end

@interface NSImage : NSObject
+ (instancetype)imageWithSystemSymbolName:(NSString *)name
                 accessibilityDescription:(NSString *)description;
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

@interface NSView : NSObject
@property (readonly, assign) NSWindow *window;
@property NSRect bounds;
@property BOOL wantsLayer;
@property (strong) CALayer *layer;
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
@end

@interface NSButton : NSControl
@property (copy) NSAttributedString *attributedTitle;
@end

@interface NSStatusBarButton : NSButton
@end

@interface NSStatusItem : NSObject
@property (readonly, strong) NSStatusBarButton *button;
@end

@interface NSStatusBar : NSObject
@property (class, readonly, strong) NSStatusBar *systemStatusBar;
- (NSStatusItem *)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem *)item;
@end

@interface NSWindow : NSObject
@property NSWindowCollectionBehavior collectionBehavior;
@property (copy) NSColor *backgroundColor;
@property (strong) NSAppearance *appearance;
@property BOOL titlebarAppearsTransparent;
@property NSWindowTitleVisibility titleVisibility;
- (NSButton *)standardWindowButton:(NSWindowButton)button;
- (NSRect)convertRectToScreen:(NSRect)rect;
- (void)makeKeyAndOrderFront:(id)sender;
@end

@interface NSApplication : NSObject
@property (class, readonly, strong) NSApplication *sharedApplication;
@property (readonly, strong) NSEvent *currentEvent;
- (NSApplicationActivationPolicy)activationPolicy;
- (BOOL)setActivationPolicy:(NSApplicationActivationPolicy)policy;
- (void)activateIgnoringOtherApps:(BOOL)ignoringOtherApps;
- (void)orderFrontStandardAboutPanelWithOptions:(NSDictionary<NSString *, id> *)options;
@end

extern "C" NSApplication *NSApp;
