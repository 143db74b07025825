#include "cards/MemoryBreakdown.h"

#include "ui/Theme.h"

#include <algorithm>

namespace corvane {

std::array<BarSegment, 4> breakdownSegments(const MemorySnapshot &memory)
{
    const double total = memory.total == 0 ? 1 : static_cast<double>(memory.total);
    const auto wired = static_cast<double>(memory.wired);
    const auto compressed = static_cast<double>(memory.compressed);
    // The app figure includes wired and compressed memory, which have segments of their own.
    const double apps = std::max(static_cast<double>(memory.appMemory) - wired - compressed, 0.0);

    std::array<BarSegment, 4> segments{
        BarSegment{wired / total, Theme::withOpacity(Theme::memory, 0.95)},
        BarSegment{apps / total, Theme::white(0.85)},
        BarSegment{compressed / total, Theme::withOpacity(Theme::cpu, 0.85)},
        BarSegment{static_cast<double>(memory.cached) / total, Theme::white(0.18)}};
    double sum = 0;
    for (BarSegment &segment : segments) {
        segment.fraction = std::min(std::max(segment.fraction, 0.0), std::max(1 - sum, 0.0));
        sum += segment.fraction;
    }
    return segments;
}

} // namespace corvane
