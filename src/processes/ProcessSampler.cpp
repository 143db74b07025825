#include "processes/ProcessSampler.h"

#include <cstdlib>
#include <utility>

namespace corvane {

std::vector<ProcessRow> ProcessSampler::topByRAM(std::int64_t n, const std::string &root)
{
    if (!std::in_range<std::int32_t>(n))
        std::abort();
    return rows(ProcessBridge::topProcessesByMemory(static_cast<std::int32_t>(n), root));
}

std::vector<ProcessRow> ProcessSampler::rows(std::span<const ProcessRecord> records)
{
    std::vector<ProcessRow> rows;
    rows.reserve(records.size());
    for (const auto &[pid, name, memory] : records) {
        if (pid && name && memory)
            rows.push_back({.id = *pid, .name = QString::fromStdString(*name), .memory = *memory});
    }
    return rows;
}

} // namespace corvane
