#pragma once

#include "timeline/Timeline.h"

namespace corvane::test {

/// Which part of a day the machine was on.
enum class DayShape {
    busy, ///< All day but a night asleep and a pause at noon.
    brief ///< Only the last quarter of a minute.
};

/// The day before a sample, on a machine like that of the sample, whose load has a shape: a morning
/// of short bursts, an afternoon of long ones, a rising memory. For pictures and tests.
Timeline scriptedDay(const SystemMetrics &newest, DayShape shape = DayShape::busy);

} // namespace corvane::test
