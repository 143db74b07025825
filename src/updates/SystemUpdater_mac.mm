#include "updates/SystemUpdater.h"

#import <Sparkle/Sparkle.h>

#include <functional>
#include <utility>

/// Tells each value of the updater's `canCheckForUpdates` on the main queue, the present one first,
/// as long as it lives.
@interface CorvaneCheckObserver : NSObject
- (instancetype)initWithUpdater:(SPUUpdater *)updater tell:(std::function<void(bool)>)tell;
- (void)stop;
@end

namespace {

NSString *const canCheckKey = @"canCheckForUpdates";

} // namespace

@implementation CorvaneCheckObserver {
    SPUUpdater *_updater;
    std::function<void(bool)> _tell;
}

- (instancetype)initWithUpdater:(SPUUpdater *)updater tell:(std::function<void(bool)>)tell
{
    self = [super init];
    if (self) {
        _updater = updater;
        _tell = std::move(tell);
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
    [NSOperationQueue.mainQueue addOperationWithBlock:^{ [weakSelf tellWhether:canCheck]; }];
}

- (void)tellWhether:(bool)canCheck
{
    if (_tell)
        _tell(canCheck);
}

- (void)stop
{
    [_updater removeObserver:self forKeyPath:canCheckKey];
    _tell = nullptr;
}

@end

namespace corvane {

namespace {

/// Sparkle's standard updater, which shows windows of its own.
class SparkleUpdater : public SystemUpdater {
public:
    SparkleUpdater()
        : m_controller([[SPUStandardUpdaterController alloc] initWithStartingUpdater:YES
                                                                     updaterDelegate:nil
                                                                  userDriverDelegate:nil])
    {
        m_observer = [[CorvaneCheckObserver alloc]
            initWithUpdater:m_controller.updater
                       tell:[this](bool canCheck) { showWhether(canCheck); }];
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
    void showWhether(bool canCheck)
    {
        m_canCheck = canCheck;
        emit canCheckChanged();
    }

    SPUStandardUpdaterController *m_controller;
    CorvaneCheckObserver *m_observer;
    bool m_canCheck = false; ///< As last told.
};

} // namespace

std::unique_ptr<SystemUpdater> makeSystemUpdater()
{
    return std::make_unique<SparkleUpdater>();
}

} // namespace corvane
