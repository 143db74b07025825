#pragma once

#include "records/SystemMetrics.h"

#include <QByteArray>

#include <optional>

namespace corvane {

/// The compact form of a sample in the history file: a line with one JSON object, whose keys are
/// the names of these fields. A plain value.
struct PersistedMetric {
    double t = 0; ///< The sample's timestamp.
    quint64 memTotal = 0;
    quint64 memUsed = 0;
    double memPct = 0; ///< 0…100; 0 if the total is 0.
    double cpuPct = 0; ///< This and the four below are 0 for a sample without a chip reading.
    double gpuPct = 0;
    double cpuW = 0;
    double gpuW = 0;
    double aneW = 0;

    static PersistedMetric from(const SystemMetrics &sample);

    /// A sample made of the stored numbers alone, with a new identity. It always has a chip
    /// reading.
    SystemMetrics toSample() const;

    /// The line without its line feed; absent if a number is not finite, which JSON cannot hold.
    std::optional<QByteArray> toJson() const;

    /// Absent unless all nine fields are there: finite numbers, the byte counts whole, from 0 to
    /// 2^64 − 1. Exact for a byte count in any notation (1.5e10, 4.0).
    static std::optional<PersistedMetric> fromJson(const QByteArray &line);
};

} // namespace corvane
