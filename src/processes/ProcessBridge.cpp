#include "processes/ProcessBridge.h"

#include "platform/KernelText.h"

#include <algorithm>

namespace corvane {

namespace {

std::vector<FootprintBounds> boundsOf(const std::vector<std::int32_t> &wanted,
                                      const std::vector<FootprintBounds> &footprints)
{
    std::vector<FootprintBounds> found;
    for (const FootprintBounds &bounds : footprints) {
        if (std::ranges::find(wanted, bounds.pid) != wanted.end())
            found.push_back(bounds);
    }
    return found;
}

} // namespace

std::string ProcessBridge::nameOf(std::int32_t pid, const ProcessSource &source)
{
    auto name = source.name(pid);
    if (!name || name->empty() || !isUtf8(*name))
        return "pid " + std::to_string(pid);
    return std::move(*name);
}

std::vector<ProcessRecord> ProcessBridge::allProcesses(const ProcessSource &source)
{
    const auto processes = source.footprints();
    std::vector<ProcessRecord> records;
    records.reserve(processes.size());
    for (const FootprintBounds &bounds : processes) {
        if (const auto memory = exactFootprint(bounds, source.footprint))
            records.push_back({bounds.pid, nameOf(bounds.pid, source), memory});
    }
    return records;
}

std::vector<ProcessRecord> ProcessBridge::topProcessesByMemory(
    std::int32_t limit, const NamesWanted &names, const ProcessSource &source,
    const std::vector<std::int32_t> &also)
{
    if (limit < 1)
        return {};
    auto footprints = source.footprints();
    const auto wanted = boundsOf(also, footprints);
    auto records =
        heaviestProcesses(std::move(footprints), static_cast<std::size_t>(limit), source.footprint);
    for (std::size_t place = 0; place < records.size(); ++place) {
        ProcessRecord &record = records[place];
        if (place < names.first || record.memory >= names.fromMemory)
            record.name = nameOf(*record.pid, source);
    }
    for (const FootprintBounds &bounds : wanted) {
        if (std::ranges::find(records, bounds.pid, &ProcessRecord::pid) != records.end())
            continue;
        if (const auto memory = exactFootprint(bounds, source.footprint))
            records.push_back({bounds.pid, nameOf(bounds.pid, source), memory});
    }
    return records;
}

std::optional<ArgumentRecord> ProcessBridge::processArgsForPID(std::int32_t pid,
                                                               const ProcessSource &source)
{
    return pid > 0 ? source.arguments(pid) : std::nullopt;
}

ProcessRanking ProcessBridge::ranking(const NamesWanted &names, const ProcessSource &source)
{
    return [=](std::int32_t limit) { return topProcessesByMemory(limit, names, source); };
}

} // namespace corvane
