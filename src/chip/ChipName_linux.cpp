#include "chip/ChipName_linux.h"

#include "chip/ChipName.h"
#include "platform/KernelFile_linux.h"
#include "platform/KernelText.h"
#include "threads/TimedCalls.h"

namespace corvane {

std::optional<std::string> readChipName()
{
    constexpr std::chrono::milliseconds patience(100);
    const std::function<std::optional<std::string>()> read = [] { return readChipNameBelow("/"); };
    if (!isMountPoint("/proc/cpuinfo"))
        return read();
    // In some containers a process serves the file, and may hang.
    return TimedCalls(1).call(read, patience).value.value_or(std::nullopt);
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
