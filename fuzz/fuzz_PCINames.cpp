#include "drivers/PCINames.h"
#include "platform/KernelText.h"

#include <cstdint>
#include <cstdlib>

using namespace corvane;

/// A line with the numbers of a device, then any bytes as the list of names.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr std::size_t longestName = 64;
    std::string_view text(reinterpret_cast<const char *>(data), size);
    std::string_view numbers = takeLine(text).value_or(std::string_view());
    const auto vendor = parsePCINumber(takeWord(numbers).value_or(std::string_view()));
    const auto device = parsePCINumber(numbers);
    const auto name = pciDeviceName(text, vendor.value_or(0x1002), device.value_or(0x73df));
    if (name && name->empty())
        std::abort();
    const std::string shown = gpuProductName("AMD", name.value_or(std::string(text)));
    if (!shown.empty()
        && (!shown.starts_with("AMD") || shown.size() > longestName || !isUtf8(shown)))
        std::abort();
    return 0;
}
