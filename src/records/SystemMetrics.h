#pragma once

#include "records/ChipReading.h"
#include "records/MemorySnapshot.h"

#include <QUuid>

#include <optional>

namespace corvane {

/// One whole-system sample. A plain value; the sampler makes one each tick and hands out copies.
struct SystemMetrics {
    QUuid id = QUuid::createUuid(); ///< Identity in lists and charts, fresh for every record.
    double timestamp = 0;           ///< Wall clock, seconds since 2001-01-01 00:00 UTC.
    MemorySnapshot memory = {};
    std::optional<ChipReading> chip = {}; ///< Absent: no chip sampler here, or no reading.

    /// The sample that stands in before the first tick: no memory, no chip, stamped with its first
    /// use. Shared by all.
    static const SystemMetrics &placeholder();
};

/// What the machine of this sample tells; a whole chip without a reading.
const MachineCoverage &coverageOf(const SystemMetrics &sample);

} // namespace corvane
