#include "updates/BundleVersion.h"

#import <Foundation/Foundation.h>

namespace corvane {

namespace {

std::optional<QString> bundleText(NSString *key)
{
    id value = [NSBundle.mainBundle objectForInfoDictionaryKey:key];
    if (![value isKindOfClass:[NSString class]])
        return std::nullopt;
    return QString::fromUtf8(static_cast<NSString *>(value).UTF8String);
}

} // namespace

BundleVersion bundleVersion()
{
    return {bundleText(@"CFBundleShortVersionString"), bundleText(@"CFBundleVersion")};
}

} // namespace corvane
