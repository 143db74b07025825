#pragma once

#include "cards/SegmentBar.h"
#include "records/MemorySnapshot.h"

#include <array>

namespace corvane {

/// Wired, other app memory, compressed and cached, from left to right. If their sum exceeds the
/// total, the rightmost segments are cut. The rest of the bar is free memory.
std::array<BarSegment, 4> breakdownSegments(const MemorySnapshot &memory);

} // namespace corvane
