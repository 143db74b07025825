#include "platform/KernelText.h"
#include "processes/ProcessFiles.h"

#include <algorithm>
#include <cstddef>

using namespace corvane;

namespace {

void checkStatm(std::string_view text, const SwapLimits &swap)
{
    const auto bounds = parseStatm(7, text, 4096, swap);
    if (bounds
        && (bounds->least > bounds->most || bounds->most == 0 || bounds->least > largestByteCount
            || bounds->most > 2 * largestByteCount))
        __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    checkStatm(text, {});
    checkStatm(text, {.inUse = 1 << 20});
    checkStatm(text, {.inUse = 1 << 20, .pagesMerged = true});
    if (const auto parent = parseParent(text); parent && *parent < 0)
        __builtin_trap();
    if (parseSwapInUse(text) > largestByteCount)
        __builtin_trap();
    if (const auto swapped = parseSwapped(text); swapped && *swapped > largestByteCount)
        __builtin_trap();
    parseStartTime(text);

    // The same bytes as a name with its link behind the first NUL.
    const std::string_view comm = text.substr(0, text.find('\0'));
    const std::string_view link = text.substr(std::min(size, comm.size() + 1));
    const std::string_view name = parseProcessName(comm);
    if (!completedName(name, link).starts_with(name))
        __builtin_trap();
    return 0;
}
