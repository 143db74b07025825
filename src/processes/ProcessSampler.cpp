#include "processes/ProcessSampler.h"

#include "platform/ForeignText.h"

#include <cstdlib>
#include <utility>

namespace corvane {

std::vector<ProcessRow> ProcessSampler::topByRAM(std::int64_t n, const ProcessRanking &ranking)
{
    if (!std::in_range<std::int32_t>(n))
        std::abort();
    std::vector<ProcessRow> rows;
    for (const auto &[pid, name, memory] : ranking(static_cast<std::int32_t>(n))) {
        if (pid && name && memory)
            rows.push_back({.id = *pid, .name = foreignText(*name), .memory = *memory});
    }
    return rows;
}

} // namespace corvane
