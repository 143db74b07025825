#include "login/LoginItem.h"

#include "threads/MainThread.h"

#import <ServiceManagement/ServiceManagement.h>

namespace corvane {

namespace {

/// Why a change failed, in the user's language; absent after a success.
std::optional<QString> failure(BOOL succeeded, NSError *error)
{
    if (succeeded)
        return std::nullopt;
    return QString::fromUtf8(error.localizedDescription.UTF8String);
}

} // namespace

LoginItem mainLoginItem()
{
    assertMainThread();
    return {
        .isEnabled = [] { return SMAppService.mainAppService.status == SMAppServiceStatusEnabled; },
        .enable =
            [] {
                NSError *error = nil;
                const BOOL succeeded = [SMAppService.mainAppService registerAndReturnError:&error];
                return failure(succeeded, error);
            },
        .disable =
            [] {
                NSError *error = nil;
                const BOOL succeeded =
                    [SMAppService.mainAppService unregisterAndReturnError:&error];
                return failure(succeeded, error);
            },
    };
}

QString loginItemFile()
{
    return {};
}

} // namespace corvane
