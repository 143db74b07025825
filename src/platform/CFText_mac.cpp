#include "platform/CFText_mac.h"

namespace corvane {

std::optional<std::string_view> utf8View(CFStringRef string, std::string &storage)
{
    if (!string)
        return std::nullopt;
    if (const char *text = CFStringGetCStringPtr(string, kCFStringEncodingUTF8))
        return text;
    const CFIndex longest =
        CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8);
    storage.resize(static_cast<std::size_t>(longest + 1)); // The closing NUL.
    if (!CFStringGetCString(string, storage.data(), longest + 1, kCFStringEncodingUTF8))
        return std::nullopt;
    return storage.c_str();
}

} // namespace corvane
