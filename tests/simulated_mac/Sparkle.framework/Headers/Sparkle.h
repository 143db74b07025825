#pragma once

// The part of Sparkle that this program uses.

#import <Foundation/Foundation.h>

@interface SPUUpdater : NSObject
@property (nonatomic, readonly) BOOL canCheckForUpdates;
@property (nonatomic) BOOL automaticallyChecksForUpdates;
@end

@interface SPUStandardUpdaterController : NSObject
- (instancetype)initWithStartingUpdater:(BOOL)startingUpdater
                        updaterDelegate:(id)updaterDelegate
                     userDriverDelegate:(id)userDriverDelegate;
@property (nonatomic, readonly) SPUUpdater *updater;
- (void)checkForUpdates:(id)sender;
@end
