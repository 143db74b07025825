#include "memory/ProcMemInfo.h"

#include "platform/KernelText.h"
#include "platform/Plausible.h"

#include <array>

namespace corvane {

namespace {

constexpr std::uint64_t kibibyte = 1024;

/// The lines of /proc/meminfo that are used, in KiB. Which of them exist depends on the kernel.
struct MemInfo {
    std::optional<std::uint64_t> total, free, available, activeAnon, inactiveAnon, activeFile,
        inactiveFile, reclaimable, slabReclaimable, zswap, swapTotal, swapFree;
};

struct MemInfoField {
    std::string_view name;
    std::optional<std::uint64_t> MemInfo::*value;
};

constexpr auto memInfoFields = std::to_array<MemInfoField>({
    {"MemTotal", &MemInfo::total},
    {"MemFree", &MemInfo::free},
    {"MemAvailable", &MemInfo::available},
    {"Active(anon)", &MemInfo::activeAnon},
    {"Inactive(anon)", &MemInfo::inactiveAnon},
    {"Active(file)", &MemInfo::activeFile},
    {"Inactive(file)", &MemInfo::inactiveFile},
    {"KReclaimable", &MemInfo::reclaimable},
    {"SReclaimable", &MemInfo::slabReclaimable},
    {"Zswap", &MemInfo::zswap},
    {"SwapTotal", &MemInfo::swapTotal},
    {"SwapFree", &MemInfo::swapFree},
});

MemInfo parseMemInfo(std::string_view text)
{
    MemInfo info;
    while (const auto line = takeKeyValue(text)) {
        for (const MemInfoField &field : memInfoFields) {
            if (line->key == field.name)
                info.*field.value = parseKibibytes(line->value);
        }
    }
    return info;
}

/// The ten-second average of one line of the pressure file, in per cent.
std::optional<double> pressureAverage(std::string_view text, std::string_view kind)
{
    constexpr std::string_view key = "avg10=";
    while (auto line = takeLine(text)) {
        if (takeWord(*line) != kind)
            continue;
        const auto word = takeWord(*line);
        if (word && word->starts_with(key))
            return parseDecimal(word->substr(key.size()));
    }
    return std::nullopt;
}

/// Level in the numbers of the shared arithmetic: 1 normal, 2 warning, 4 critical.
std::int32_t level(bool critical, bool warning)
{
    return critical ? 4 : warning ? 2 : 1;
}

std::optional<std::int32_t> pressureLevel(const ProcMemoryTexts &texts, const MemInfo &info)
{
    // Users notice when some task waited for memory during a tenth of the last ten seconds; when
    // all tasks waited for as long at once, the machine stalls.
    constexpr double stalledPercent = 10;
    const std::string_view text = texts.pressure.value_or(std::string_view());
    if (const auto some = pressureAverage(text, "some")) {
        const double full = pressureAverage(text, "full").value_or(0);
        return level(full >= stalledPercent, *some >= stalledPercent);
    }
    if (!info.available || !info.total || *info.total == 0)
        return std::nullopt;
    return level(*info.available * 20 < *info.total, *info.available * 10 < *info.total);
}

/// Bytes that the ZFS cache could release.
std::uint64_t shrinkableCache(std::string_view arcStats)
{
    std::uint64_t size = 0;
    std::uint64_t minimum = 0;
    while (auto line = takeLine(arcStats)) {
        const auto name = takeWord(*line);
        const auto type = takeWord(*line);
        const auto value = parseUnsigned(trimmed(*line));
        if (!type || !value || *value > largestByteCount)
            continue;
        if (name == "size")
            size = *value;
        else if (name == "c_min")
            minimum = *value;
    }
    return size > minimum ? size - minimum : 0;
}

std::uint64_t remainder(std::uint64_t whole, std::uint64_t part)
{
    return whole > part ? whole - part : 0;
}

MemoryCounters::Pages pages(const MemInfo &info, const ProcMemoryTexts &texts)
{
    const auto reclaimable = info.reclaimable ? info.reclaimable : info.slabReclaimable;
    MemoryCounters::Pages pages;
    pages.free = *info.free;
    // Fresh pages begin on the inactive list, so a process's memory is in both.
    pages.active = info.activeAnon.value_or(0) + info.inactiveAnon.value_or(0);
    pages.compressor = info.zswap.value_or(0) + texts.zramBytes / kibibyte;
    pages.external = info.activeFile.value_or(0) + info.inactiveFile.value_or(0);
    pages.purgeable = reclaimable.value_or(0)
        + shrinkableCache(texts.arcStats.value_or(std::string_view())) / kibibyte;
    pages.inactive = pages.external + pages.purgeable;
    pages.wired =
        remainder(*info.total, pages.free + pages.active + pages.compressor + pages.inactive);
    return pages;
}

} // namespace

MemoryCounters memoryCounters(const ProcMemoryTexts &texts)
{
    const MemInfo info = parseMemInfo(texts.memInfo.value_or(std::string_view()));
    MemoryCounters counters{.pageSize = kibibyte};
    if (info.total)
        counters.totalBytes = *info.total * kibibyte;
    if (info.total && info.free)
        counters.pages = pages(info, texts);
    if (info.swapTotal && info.swapFree) {
        counters.swap = {.total = *info.swapTotal * kibibyte,
                         .used = remainder(*info.swapTotal, *info.swapFree) * kibibyte};
    }
    counters.pressureLevel = pressureLevel(texts, info);
    if (info.available)
        counters.availableBytes = *info.available * kibibyte;
    return counters;
}

std::uint64_t zramMemory(std::string_view mmStat)
{
    // Columns by position (Documentation/admin-guide/blockdev/zram.rst): the third is
    // mem_used_total. Kernels of interest have eight or nine of them.
    constexpr int leastColumns = 8;
    constexpr int memUsedTotal = 2;
    auto line = takeLine(mmStat);
    std::uint64_t used = 0;
    int column = 0;
    for (; line && column < leastColumns; ++column) {
        const auto word = takeWord(*line);
        const auto value = word ? parseUnsigned(*word) : std::nullopt;
        if (!value)
            return 0;
        if (column == memUsedTotal)
            used = *value;
    }
    return column == leastColumns && used <= largestByteCount ? used : 0;
}

} // namespace corvane
