#include "simulated_mac/recorded/Messages.h"
#include "simulated_mac/recorded/Updater.h"

#import <Sparkle/Sparkle.h>

using namespace corvane::simulated;

namespace {

SPUUpdater *theUpdater()
{
    static SPUUpdater *const made = [[SPUUpdater alloc] init];
    return made;
}

} // namespace

Updater &corvane::simulated::updater()
{
    static Updater one;
    return one;
}

void corvane::simulated::letUpdaterCheck(bool canCheck)
{
    updater().canCheck = canCheck;
    changed(theUpdater(), "canCheckForUpdates");
}

@implementation SPUUpdater
- (BOOL)canCheckForUpdates
{
    return updater().canCheck;
}
- (BOOL)automaticallyChecksForUpdates
{
    return updater().automaticallyChecks;
}
- (void)setAutomaticallyChecksForUpdates:(BOOL)automaticallyChecks
{
    updater().automaticallyChecks = automaticallyChecks;
    record(self,
           std::string("setAutomaticallyChecksForUpdates:") + (automaticallyChecks ? "YES" : "NO"));
}
@end

@implementation SPUStandardUpdaterController
- (instancetype)initWithStartingUpdater:(BOOL)startingUpdater
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate
{
    record(self,
           std::string("initWithStartingUpdater:") + (startingUpdater ? "YES" : "NO")
               + " updaterDelegate:" + described(updaterDelegate)
               + " userDriverDelegate:" + described(userDriverDelegate));
    return self;
}
- (SPUUpdater *)updater
{
    return theUpdater();
}
- (void)checkForUpdates:(id)sender
{
    record(self, "checkForUpdates:" + described(sender));
}
@end
