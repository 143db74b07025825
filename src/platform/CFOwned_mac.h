#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <memory>
#include <type_traits>

namespace corvane {

struct CFReleaser {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};

/// Owns what a CoreFoundation function with Create or Copy in its name returned, null included:
/// `CFOwned<CFStringRef> name(CFStringCreate…(…))`. Apple sources only.
template <typename Reference>
using CFOwned = std::unique_ptr<std::remove_pointer_t<Reference>, CFReleaser>;

} // namespace corvane
