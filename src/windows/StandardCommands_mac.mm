#include "windows/StandardCommands_mac.h"

#include "threads/MainThread.h"

#import <AppKit/AppKit.h>

namespace corvane {

namespace {

SEL selectorOf(WindowCommand command)
{
    switch (command) {
    case WindowCommand::close:
        return @selector(performClose:);
    case WindowCommand::minimize:
        return @selector(performMiniaturize:);
    case WindowCommand::zoom:
        return @selector(performZoom:);
    case WindowCommand::fullScreen:
        return @selector(toggleFullScreen:);
    case WindowCommand::bringAllToFront:
        return @selector(arrangeInFront:);
    case WindowCommand::copy:
        return @selector(copy:);
    case WindowCommand::selectAll:
        break;
    }
    return @selector(selectAll:);
}

bool hasStyle(NSWindowStyleMask style)
{
    return (NSApp.keyWindow.styleMask & style) != 0;
}

bool canFillTheScreen(NSWindow *window)
{
    return (window.collectionBehavior & NSWindowCollectionBehaviorFullScreenPrimary) != 0;
}

/// A text can be copied and selected. Qt's views also respond to these messages, but only to those
/// from Qt's own menu items.
bool focusIsOnText()
{
    return [NSApp.keyWindow.firstResponder isKindOfClass:[NSText class]];
}

} // namespace

void sendStandardCommand(WindowCommand command)
{
    assertMainThread();
    if (acceptsStandardCommand(command))
        [NSApp sendAction:selectorOf(command) to:nil from:nil];
}

bool acceptsStandardCommand(WindowCommand command)
{
    assertMainThread();
    switch (command) {
    case WindowCommand::close:
        return hasStyle(NSWindowStyleMaskClosable);
    case WindowCommand::minimize:
        return hasStyle(NSWindowStyleMaskMiniaturizable);
    case WindowCommand::zoom:
        return hasStyle(NSWindowStyleMaskResizable);
    case WindowCommand::fullScreen:
        return canFillTheScreen(NSApp.keyWindow);
    case WindowCommand::copy:
    case WindowCommand::selectAll:
        return focusIsOnText();
    case WindowCommand::bringAllToFront:
        break;
    }
    return true;
}

bool keyWindowIsFullScreen()
{
    assertMainThread();
    return hasStyle(NSWindowStyleMaskFullScreen);
}

void registerSystemMenus(void *windows, void *help)
{
    assertMainThread();
    // Otherwise the system adds a second "Enter Full Screen", as it knows its own items alone.
    [NSUserDefaults.standardUserDefaults registerDefaults:@{
        @"NSFullScreenMenuItemEverywhere" : @NO
    }];
    NSApp.windowsMenu = (__bridge NSMenu *)windows;
    NSApp.helpMenu = (__bridge NSMenu *)help;
}

} // namespace corvane
