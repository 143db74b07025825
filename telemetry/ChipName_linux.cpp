#include "telemetry/ChipName.h"

#include "platform/KernelFile.h"
#include "platform/KernelText.h"

namespace corvane {

namespace {

/// "model name" of the first processor; only x86 kernels write it.
std::optional<std::string> modelName(const std::string &root)
{
    constexpr std::size_t firstProcessor = 4096; // The file is long where there are many.
    const auto contents = readKernelFile(root + "/proc/cpuinfo", firstProcessor);
    std::string_view text = contents ? std::string_view(*contents) : std::string_view();
    while (const auto line = takeLine(text)) {
        const std::size_t colon = line->find(':');
        if (colon != std::string_view::npos && trimmed(line->substr(0, colon)) == "model name")
            return std::string(trimmed(line->substr(colon + 1)));
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> readChipName(const std::string &root)
{
    if (const auto name = modelName(root); name && !name->empty())
        return name;
    for (const char *path : {"/proc/device-tree/model", "/sys/firmware/devicetree/base/model"}) {
        if (const auto model = readKernelFile(root + path))
            return std::string(trimmed(*model)); // The device tree's texts end in NUL.
    }
    return std::nullopt;
}

} // namespace corvane
