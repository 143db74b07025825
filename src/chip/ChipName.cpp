#include "chip/ChipName.h"

#include "platform/KernelText.h"

namespace corvane {

std::optional<std::string> processorName(std::string_view cpuInfo)
{
    while (const auto line = takeLine(cpuInfo)) {
        const std::size_t colon = line->find(':');
        if (colon != std::string_view::npos && trimmed(line->substr(0, colon)) == "model name")
            return std::string(trimmed(line->substr(colon + 1)));
    }
    return std::nullopt;
}

} // namespace corvane
