#include "gpuclients/KfdText.h"

#include "platform/KernelText.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace corvane {

std::optional<std::string> kfdAddress(std::string_view properties)
{
    std::optional<std::uint64_t> location;
    std::uint64_t domain = 0;
    while (auto line = takeLine(properties)) {
        const auto key = takeWord(*line);
        const auto value = parseUnsigned(trimmed(*line));
        if (key == "location_id")
            location = value;
        else if (key == "domain" && value)
            domain = *value;
    }
    // Bus, device and function in 8, 5 and 3 bits; 0 stands for a CPU.
    if (!location || *location == 0 || *location > 0xffff || domain > 0xffffffff)
        return std::nullopt;
    std::array<char, 32> text = {};
    std::snprintf(
        text.data(), text.size(), "%04llx:%02x:%02x.%x", static_cast<unsigned long long>(domain),
        static_cast<unsigned int>(*location >> 8), static_cast<unsigned int>(*location >> 3 & 0x1f),
        static_cast<unsigned int>(*location & 0x7));
    return std::string(text.data());
}

} // namespace corvane
