#include "chip/ChipName.h"

#include <sys/sysctl.h>

namespace corvane {

std::optional<std::string> readChipName()
{
    constexpr const char *key = "machdep.cpu.brand_string";
    constexpr std::size_t longestName = 4096;
    std::size_t size = 0;
    if (sysctlbyname(key, nullptr, &size, nullptr, 0) != 0 || size == 0 || size > longestName)
        return std::nullopt;
    std::string name(size, '\0');
    if (sysctlbyname(key, name.data(), &size, nullptr, 0) != 0)
        return std::nullopt;
    // The system counts the closing NUL in; the text ends at the first one.
    return std::string(name.c_str());
}

} // namespace corvane
