#include "updates/SystemUpdater.h"

#include "threads/MainThread.h"

#import <Sparkle/Sparkle.h>

#include <functional>
#include <utility>

/// Reports each value of the updater's `canCheckForUpdates` on the main queue, the present one
/// first, until it is stopped.
@interface CorvaneCheckObserver : NSObject {
    SPUUpdater *_updater;
    std::function<void(bool)> _onChange;
}
- (instancetype)initWithUpdater:(SPUUpdater *)updater onChange:(std::function<void(bool)>)onChange;
- (void)stop;
@end

namespace {

NSString *const canCheckKey = @"canCheckForUpdates";

} // namespace

@implementation CorvaneCheckObserver

- (instancetype)initWithUpdater:(SPUUpdater *)updater onChange:(std::function<void(bool)>)onChange
{
    self = [super init];
    if (self) {
        _updater = updater;
        _onChange = std::move(onChange);
        [_updater addObserver:self
                   forKeyPath:canCheckKey
                      options:NSKeyValueObservingOptionInitial
                      context:nullptr];
    }
    return self;
}

- (void)observeValueForKeyPath:(NSString *)keyPath
                      ofObject:(id)object
                        change:(NSDictionary *)change
                       context:(void *)context
{
    const bool canCheck = _updater.canCheckForUpdates;
    __weak CorvaneCheckObserver *weakSelf = self;
    [NSOperationQueue.mainQueue addOperationWithBlock:^{ [weakSelf report:canCheck]; }];
}

- (void)report:(bool)canCheck
{
    const std::function<void(bool)> onChange = _onChange; // It may stop this object.
    if (onChange)
        onChange(canCheck);
}

- (void)stop
{
    [_updater removeObserver:self forKeyPath:canCheckKey];
    _onChange = nullptr;
}

@end

namespace corvane {

namespace {

/// Sparkle's standard updater, which has its own windows.
class SparkleUpdater : public SystemUpdater {
public:
    SparkleUpdater()
        : m_controller([[SPUStandardUpdaterController alloc] initWithStartingUpdater:YES
                                                                     updaterDelegate:nil
                                                                  userDriverDelegate:nil])
    {
        assertMainThread();
        m_observer = [[CorvaneCheckObserver alloc]
            initWithUpdater:m_controller.updater
                   onChange:[this](bool canCheck) { setCanCheck(canCheck); }];
    }
    ~SparkleUpdater() override { [m_observer stop]; }

    bool automaticallyChecks() const override
    {
        return m_controller.updater.automaticallyChecksForUpdates;
    }
    void setAutomaticallyChecks(bool on) override
    {
        m_controller.updater.automaticallyChecksForUpdates = on;
    }
    bool canCheck() const override { return m_canCheck; }
    void check() override { [m_controller checkForUpdates:nil]; }

private:
    void setCanCheck(bool canCheck)
    {
        m_canCheck = canCheck;
        emit canCheckChanged();
    }

    SPUStandardUpdaterController *m_controller;
    CorvaneCheckObserver *m_observer;
    bool m_canCheck = false; ///< As last reported.
};

} // namespace

std::unique_ptr<SystemUpdater> makeSystemUpdater()
{
    return std::make_unique<SparkleUpdater>();
}

} // namespace corvane
