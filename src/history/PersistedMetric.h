#pragma once

#include "records/SystemMetrics.h"

#include <QByteArray>

#include <optional>

namespace corvane {

/// The compact form of a sample in the history file: one JSON object a line, whose keys are the
/// names of these fields. A plain value.
struct PersistedMetric {
    double t = 0; ///< The sample's timestamp.
    quint64 memTotal = 0;
    quint64 memUsed = 0;
    double memPct = 0; ///< 0…100; 0 without a total.
    double cpuPct = 0; ///< These five are 0 for a sample without a chip reading.
    double gpuPct = 0;
    double cpuW = 0;
    double gpuW = 0;
    double aneW = 0;

    static PersistedMetric from(const SystemMetrics &sample);

    /// The sample that the record stands for, with an identity of its own. It always has a chip
    /// reading, made of the stored numbers alone.
    SystemMetrics toSample() const;

    /// The line without its line feed; nothing when a number is not finite, which JSON cannot hold.
    std::optional<QByteArray> toJson() const;

    /// Nothing unless all nine are there: numbers, and the byte counts whole and of 64 bits.
    static std::optional<PersistedMetric> fromJson(const QByteArray &line);
};

} // namespace corvane
