#include "simulated_mac/recorded/LoginItems.h"
#include "simulated_mac/recorded/Messages.h"

#import <ServiceManagement/ServiceManagement.h>

using namespace corvane::simulated;

LoginItems &corvane::simulated::loginItems()
{
    static LoginItems items;
    return items;
}

@implementation NSError
- (NSString *)localizedDescription
{
    return @"The code signature is not valid";
}
@end

@implementation SMAppService
+ (SMAppService *)mainAppService
{
    static SMAppService *const service = [[SMAppService alloc] init];
    return service;
}
- (SMAppServiceStatus)status
{
    if (!loginItems().isRegistered)
        return SMAppServiceStatusNotRegistered;
    return loginItems().userHasApproved ? SMAppServiceStatusEnabled
                                        : SMAppServiceStatusRequiresApproval;
}
- (BOOL)registerAndReturnError:(NSError **)error
{
    sentMessages().push_back("SMAppService registerAndReturnError:");
    if (!loginItems().bundleIsSigned) {
        *error = [[NSError alloc] init];
        return NO;
    }
    loginItems().isRegistered = true;
    return YES;
}
- (BOOL)unregisterAndReturnError:(NSError **)error
{
    (void)error;
    sentMessages().push_back("SMAppService unregisterAndReturnError:");
    loginItems().isRegistered = false;
    return YES;
}
@end
