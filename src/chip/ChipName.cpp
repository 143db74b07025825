#include "chip/ChipName.h"

#include "platform/KernelText.h"

namespace corvane {

std::optional<std::string> processorName(std::string_view cpuInfo)
{
    while (const auto line = takeKeyValue(cpuInfo)) {
        if (line->key == "model name")
            return std::string(line->value);
    }
    return std::nullopt;
}

} // namespace corvane
