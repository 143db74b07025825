#include "instance/ApplicationService.h"

#include "threads/MainThread.h"

#import <AppKit/AppKit.h>

#include <functional>
#include <utility>

// The system starts a bundle once. A later start, or a click on the program's icon in the Dock, is
// sent to the running process as a "reopen" event, which carries no token.

/// Calls `open` for each reopen event until it is stopped. Main thread.
@interface CorvaneReopenHandler : NSObject {
    std::function<void()> _open;
}
- (instancetype)initWithAction:(std::function<void()>)open;
- (void)stop;
@end

@implementation CorvaneReopenHandler

- (instancetype)initWithAction:(std::function<void()>)open
{
    self = [super init];
    if (self) {
        _open = std::move(open);
        [self installHandler];
        // The application installs its own handlers while it enters the event loop.
        [NSNotificationCenter.defaultCenter addObserver:self
                                               selector:@selector(installHandler)
                                                   name:NSApplicationWillFinishLaunchingNotification
                                                 object:nil];
    }
    return self;
}

/// The handler that this replaces restores a minimized window and makes Qt report again that the
/// program is active. Opening the dashboard does both.
- (void)installHandler
{
    [NSAppleEventManager.sharedAppleEventManager setEventHandler:self
                                                     andSelector:@selector(reopen:withReply:)
                                                   forEventClass:kCoreEventClass
                                                      andEventID:kAEReopenApplication];
}

- (void)reopen:(NSAppleEventDescriptor *)event withReply:(NSAppleEventDescriptor *)reply
{
    const std::function<void()> open = _open; // It may stop this object.
    if (open)
        open();
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

namespace {

class ReopenService : public ApplicationService {
public:
    ReopenService()
        : m_handler(
            [[CorvaneReopenHandler alloc] initWithAction:[this] { emit openRequested({}); }])
    {
        assertMainThread();
    }
    ~ReopenService() override { [m_handler stop]; }

private:
    CorvaneReopenHandler *m_handler;
};

} // namespace

std::unique_ptr<ApplicationService> makeApplicationService(const std::string &)
{
    return std::make_unique<ReopenService>();
}

} // namespace corvane
