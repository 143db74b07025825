#pragma once

#include "records/MemorySnapshot.h"

#include <QColor>

#include <array>

namespace corvane {

/// One segment of the bar that divides the physical memory.
struct MemorySegment {
    double fraction = 0; ///< Of the total, 0…1.
    QColor color = {};

    friend bool operator==(const MemorySegment &, const MemorySegment &) = default;
};

/// Wired, other app memory, compressed and cached, from left to right. If their sum exceeds the
/// total, the rightmost segments are cut. The rest of the bar is free memory.
std::array<MemorySegment, 4> breakdownSegments(const MemorySnapshot &memory);

} // namespace corvane
