#include "app/Activity.h"

#import <Foundation/Foundation.h>

namespace corvane {

struct Activity::Token {
    id<NSObject> activity;
};

Activity::Activity()
    : m_token(new Token{[NSProcessInfo.processInfo
        beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                          reason:@"Takes a sample every second"]})
{
}

Activity::~Activity()
{
    [NSProcessInfo.processInfo endActivity:m_token->activity];
}

} // namespace corvane
