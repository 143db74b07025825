#include "tray/TrayHost.h"

#include <algorithm>
#include <cstdint>
#include <string_view>

using namespace corvane;

/// The bytes before the first NUL are the short name of the tray's program, those after it its
/// executable.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const std::string_view name = text.substr(0, text.find('\0'));
    const std::string_view executable = text.substr(std::min(size, name.size() + 1));
    const TrayHost host =
        trayHost({.name = std::string(name), .executable = std::string(executable)});
    // Only a known bar gets a form other than the default, which every bar can show.
    const bool isKnown = host != TrayHost{};
    if (isKnown && name.size() < 5 && executable.size() < 5)
        __builtin_trap();
    return 0;
}
