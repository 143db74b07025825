#include "processes/FootprintRanking.h"

#include <algorithm>

namespace corvane {

namespace {

bool isHeavier(const ProcessRecord &left, const ProcessRecord &right)
{
    return left.memory != right.memory ? left.memory > right.memory : left.pid < right.pid;
}

} // namespace

std::optional<std::uint64_t> exactFootprint(const FootprintBounds &bounds,
                                            const FootprintReader &read)
{
    const auto memory = bounds.least == bounds.most ? std::optional(bounds.least) : read(bounds);
    return memory == std::uint64_t(0) ? std::nullopt : memory;
}

std::vector<ProcessRecord> heaviestProcesses(std::vector<FootprintBounds> processes,
                                             std::size_t limit, const FootprintReader &read)
{
    // The processes are visited in falling order of what they can reach. Once the list is full and
    // one cannot reach its lightest member, none of those behind it can.
    std::ranges::sort(processes, std::greater(), &FootprintBounds::most);
    std::vector<ProcessRecord> heaviest; // A heap with the lightest in front.
    heaviest.reserve(std::min(limit, processes.size()));
    for (const FootprintBounds &bounds : processes) {
        const bool full = heaviest.size() == limit;
        if (full && (limit == 0 || bounds.most < heaviest.front().memory))
            break;
        const auto memory = exactFootprint(bounds, read);
        if (!memory)
            continue;
        const ProcessRecord process{.pid = bounds.pid, .memory = memory};
        if (full) {
            if (!isHeavier(process, heaviest.front()))
                continue;
            std::ranges::pop_heap(heaviest, isHeavier);
            heaviest.pop_back();
        }
        heaviest.push_back(process);
        std::ranges::push_heap(heaviest, isHeavier);
    }
    std::ranges::sort_heap(heaviest, isHeavier);
    return heaviest;
}

} // namespace corvane
