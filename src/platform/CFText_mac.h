#pragma once

#include <CoreFoundation/CoreFoundation.h>

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// A string's text as UTF-8: in place where the string is stored that way, otherwise copied to
/// `storage`. Valid as long as both. Absent for null. Any thread; Apple sources only.
std::optional<std::string_view> utf8View(CFStringRef string, std::string &storage);

} // namespace corvane
