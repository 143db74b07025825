#include "processes/ProcessBridge.h"

#include "platform/KernelText.h"

namespace corvane {

std::string ProcessBridge::name(std::int32_t pid, const std::string &root)
{
    auto read = readName(pid, root);
    if (!read || read->empty() || !isUtf8(*read))
        return "pid " + std::to_string(pid);
    return std::move(*read);
}

FootprintReader ProcessBridge::footprintReader(const std::string &root)
{
    return [&root](const FootprintBounds &bounds) { return readFootprint(bounds, root); };
}

std::vector<ProcessRecord> ProcessBridge::allProcesses(const std::string &root)
{
    const auto processes = listFootprints(root);
    const auto read = footprintReader(root);
    std::vector<ProcessRecord> records;
    records.reserve(processes.size());
    for (const FootprintBounds &bounds : processes) {
        if (const auto process = exactFootprint(bounds, read))
            records.push_back({process->pid, name(process->pid, root), process->memory});
    }
    return records;
}

std::vector<ProcessRecord> ProcessBridge::topProcessesByMemory(std::int32_t limit,
                                                               const std::string &root,
                                                               const NamesWanted &names)
{
    if (limit < 1)
        return {};
    const auto heaviest = heaviestFootprints(listFootprints(root), static_cast<std::size_t>(limit),
                                             footprintReader(root));
    std::vector<ProcessRecord> records;
    records.reserve(heaviest.size());
    for (const auto &[pid, memory] : heaviest) {
        ProcessRecord &record = records.emplace_back(ProcessRecord{.pid = pid, .memory = memory});
        if (records.size() <= names.first || memory >= names.fromMemory)
            record.name = name(pid, root);
    }
    return records;
}

} // namespace corvane
