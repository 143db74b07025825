#include "processes/ProcessBridge.h"

#include "platform/KernelText.h"

namespace corvane {

namespace {

std::string nameOf(std::int32_t pid, const ProcessSource &source)
{
    auto name = source.name(pid);
    if (!name || name->empty() || !isUtf8(*name))
        return "pid " + std::to_string(pid);
    return std::move(*name);
}

} // namespace

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

std::vector<ProcessRecord> ProcessBridge::topProcessesByMemory(std::int32_t limit,
                                                               const NamesWanted &names,
                                                               const ProcessSource &source)
{
    if (limit < 1)
        return {};
    auto records =
        heaviestProcesses(source.footprints(), static_cast<std::size_t>(limit), source.footprint);
    for (std::size_t place = 0; place < records.size(); ++place) {
        ProcessRecord &record = records[place];
        if (place < names.first || record.memory >= names.fromMemory)
            record.name = nameOf(*record.pid, source);
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

ArgumentReader ProcessBridge::argumentReader(const ProcessSource &source)
{
    return [source](std::int32_t pid) { return processArgsForPID(pid, source); };
}

} // namespace corvane
