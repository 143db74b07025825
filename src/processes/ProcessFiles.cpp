#include "processes/ProcessFiles.h"

#include "platform/KernelText.h"
#include "platform/Plausible.h"

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

/// Bytes of the first line "NAME:   123 kB".
std::optional<std::uint64_t> bytesOfLine(std::string_view text, std::string_view name)
{
    constexpr std::uint64_t kibibyte = 1024;
    while (const auto line = takeKeyValue(text)) {
        if (line->key != name)
            continue;
        const auto count = parseKibibytes(line->value);
        return count ? byteCount(*count, kibibyte) : std::nullopt;
    }
    return std::nullopt;
}

std::optional<std::uint64_t> takeCount(std::string_view &text)
{
    const auto word = takeWord(text);
    return word ? parseUnsigned(*word) : std::nullopt;
}

/// The count behind the name, which may hold any byte, and so many more fields of `stat`.
std::optional<std::uint64_t> countBehindName(std::string_view stat, int fieldsBetween)
{
    const std::size_t nameEnd = stat.rfind(')');
    if (nameEnd == std::string_view::npos)
        return std::nullopt;
    stat.remove_prefix(nameEnd + 1);
    for (int field = 0; field < fieldsBetween; ++field) {
        if (!takeWord(stat))
            return std::nullopt;
    }
    return takeCount(stat);
}

} // namespace

std::uint64_t parseSwapInUse(std::string_view memInfo)
{
    const auto total = bytesOfLine(memInfo, "SwapTotal");
    const auto free = bytesOfLine(memInfo, "SwapFree");
    return total && free && *total > *free ? *total - *free : 0;
}

std::optional<FootprintBounds> parseStatm(std::int32_t pid, std::string_view statm,
                                          std::uint64_t pageSize, const SwapLimits &swap)
{
    statm = trimmed(statm);
    const auto size = takeCount(statm);
    const auto resident = takeCount(statm);
    const auto shared = takeCount(statm);
    if (!size || !resident || !shared || *shared > *resident)
        return std::nullopt;
    const auto own = byteCount(*resident - *shared, pageSize);
    if (!own)
        return std::nullopt;

    // Every swapped page has its place in the address space, outside the resident ones.
    const std::uint64_t absent = *size > *resident ? *size - *resident : 0;
    std::uint64_t swapped = byteCount(absent, pageSize).value_or(largestByteCount);
    if (swap.inUse == 0 || !swap.pagesMerged)
        swapped = std::min(swapped, swap.inUse);
    if (*own + swapped == 0)
        return std::nullopt;
    return FootprintBounds{.pid = pid, .least = *own, .most = *own + swapped};
}

std::optional<std::uint64_t> parseSwapped(std::string_view status)
{
    return bytesOfLine(status, "VmSwap");
}

std::optional<std::uint64_t> parseStartTime(std::string_view stat)
{
    constexpr int fieldsBetween = 19; // From the third, behind the name, to the 22nd.
    return countBehindName(stat, fieldsBetween);
}

std::optional<std::int32_t> parseParent(std::string_view stat)
{
    constexpr int fieldsBetween = 1; // The state.
    const auto parent = countBehindName(stat, fieldsBetween);
    if (!parent || !std::in_range<std::int32_t>(*parent))
        return std::nullopt;
    return static_cast<std::int32_t>(*parent);
}

bool mayBeCut(std::string_view name)
{
    constexpr std::size_t longestName = 15; // TASK_COMM_LEN without its NUL.
    return name.size() == longestName;
}

std::string_view parseProcessName(std::string_view comm)
{
    if (comm.ends_with('\n'))
        comm.remove_suffix(1);
    return comm;
}

std::string_view executablePath(std::string_view link)
{
    constexpr std::string_view removed = " (deleted)";
    if (link.ends_with(removed))
        link.remove_suffix(removed.size());
    return link;
}

std::string_view completedName(std::string_view name, std::string_view executable)
{
    const std::string_view path = executablePath(executable);
    const std::string_view fileName = path.substr(path.rfind('/') + 1);
    return mayBeCut(name) && fileName.starts_with(name) ? fileName : name;
}

} // namespace corvane
