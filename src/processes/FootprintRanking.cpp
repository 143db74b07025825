#include "processes/FootprintRanking.h"

#include <algorithm>

namespace corvane {

namespace {

bool isHeavier(const ProcessFootprint &left, const ProcessFootprint &right)
{
    return left.memory != right.memory ? left.memory > right.memory : left.pid < right.pid;
}

} // namespace

std::optional<ProcessFootprint> exactFootprint(const FootprintBounds &bounds,
                                               const FootprintReader &read)
{
    const auto memory = bounds.least == bounds.most ? std::optional(bounds.least) : read(bounds);
    if (!memory || *memory == 0)
        return std::nullopt;
    return ProcessFootprint{bounds.pid, *memory};
}

std::vector<ProcessFootprint> heaviestFootprints(std::vector<FootprintBounds> processes,
                                                 std::size_t limit, const FootprintReader &read)
{
    // In falling order of what they can reach, the walk is over at the first process that cannot
    // reach the lightest of a full list: none behind it can.
    std::ranges::sort(processes, std::greater(), &FootprintBounds::most);
    std::vector<ProcessFootprint> heaviest; // A heap with the lightest in front.
    heaviest.reserve(std::min(limit, processes.size()));
    for (const FootprintBounds &bounds : processes) {
        const bool full = heaviest.size() == limit;
        if (full && (limit == 0 || bounds.most < heaviest.front().memory))
            break;
        const auto process = exactFootprint(bounds, read);
        if (!process)
            continue;
        if (full) {
            if (!isHeavier(*process, heaviest.front()))
                continue;
            std::ranges::pop_heap(heaviest, isHeavier);
            heaviest.pop_back();
        }
        heaviest.push_back(*process);
        std::ranges::push_heap(heaviest, isHeavier);
    }
    std::ranges::sort_heap(heaviest, isHeavier);
    return heaviest;
}

} // namespace corvane
