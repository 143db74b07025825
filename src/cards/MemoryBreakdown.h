#pragma once

#include "records/MemorySnapshot.h"

#include <QColor>

#include <array>

namespace corvane {

/// One piece of the bar that divides the physical memory.
struct MemorySegment {
    double fraction = 0; ///< Of the total, 0…1.
    QColor color = {};

    friend bool operator==(const MemorySegment &, const MemorySegment &) = default;
};

/// Wired, other app memory, compressed and cached, from left to right. Together they fill at most
/// the whole bar: what is too much is cut from the right. The bar's rest is free memory.
std::array<MemorySegment, 4> breakdownSegments(const MemorySnapshot &memory);

} // namespace corvane
