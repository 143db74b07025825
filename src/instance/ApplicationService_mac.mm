#include "instance/ApplicationService.h"

#import <AppKit/AppKit.h>

#include <functional>
#include <utility>

// The system starts a bundle once. Later starts, and a click on the program's symbol in the Dock,
// it sends to the running program as an event.

/// Calls `open` for each of these events until it is stopped. Main thread.
@interface CorvaneReopenHandler : NSObject
- (instancetype)initWithAction:(std::function<void()>)open;
- (void)stop;
@end

@implementation CorvaneReopenHandler {
    std::function<void()> _open;
}

- (instancetype)initWithAction:(std::function<void()>)open
{
    self = [super init];
    if (self) {
        _open = std::move(open);
        [self takeEvents];
        // The application puts handlers of its own in place on its way into the event loop.
        [NSNotificationCenter.defaultCenter addObserver:self
                                               selector:@selector(takeEvents)
                                                   name:NSApplicationWillFinishLaunchingNotification
                                                 object:nil];
    }
    return self;
}

/// What this replaces brings a minimized window back and has Qt repeat that the program is active;
/// whoever opens the dashboard does as much.
- (void)takeEvents
{
    [NSAppleEventManager.sharedAppleEventManager setEventHandler:self
                                                     andSelector:@selector(reopen:withReply:)
                                                   forEventClass:kCoreEventClass
                                                      andEventID:kAEReopenApplication];
}

- (void)reopen:(NSAppleEventDescriptor *)event withReply:(NSAppleEventDescriptor *)reply
{
    if (_open)
        _open();
}

- (void)stop
{
    [NSNotificationCenter.defaultCenter removeObserver:self];
    [NSAppleEventManager.sharedAppleEventManager
        removeEventHandlerForEventClass:kCoreEventClass
                             andEventID:kAEReopenApplication];
    _open = nullptr;
}

@end

namespace corvane {

struct ApplicationService::Bus {
    CorvaneReopenHandler *handler;
};

ApplicationService::ApplicationService(std::string, QObject *parent)
    : QObject(parent),
      m_bus(
          new Bus{[[CorvaneReopenHandler alloc] initWithAction:[this] { emit openRequested({}); }]})
{
}

ApplicationService::~ApplicationService()
{
    [m_bus->handler stop];
}

} // namespace corvane
