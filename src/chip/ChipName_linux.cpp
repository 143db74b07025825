#include "chip/ChipName_linux.h"

#include "chip/ChipName.h"
#include "platform/KernelFile_linux.h"
#include "platform/KernelText.h"

namespace corvane {

std::optional<std::string> readChipName()
{
    return readChipNameBelow("/");
}

std::optional<std::string> readChipNameBelow(const std::string &root)
{
    constexpr std::size_t firstProcessor = 4096; // The file is long where there are many.
    const auto cpuInfo = readKernelFile(root + "/proc/cpuinfo", firstProcessor);
    if (const auto name = processorName(cpuInfo.value_or(std::string())); name && !name->empty())
        return name;
    for (const char *path : {"/proc/device-tree/model", "/sys/firmware/devicetree/base/model"}) {
        if (const auto model = readKernelFile(root + path))
            return std::string(trimmed(*model)); // The device tree's texts end in NUL.
    }
    return std::nullopt;
}

} // namespace corvane
