#pragma once

#include "records/SystemMetrics.h"
#include "timeline/MeanRecord.h"

#include <optional>
#include <span>
#include <vector>

namespace corvane {

/// The means of a window of time: what a chart of more than a minute shows. It refers to records
/// that the timeline owns and may change with the next sample.
struct MeanWindow {
    double begin = 0; ///< Seconds since 2001.
    double end = 0;   ///< Moves when there may be a new point.
    std::span<const MeanRecord> records = {};

    /// Tells one content from another: records change at the end of the window alone.
    struct Key {
        double begin = 0;
        double end = 0;
        std::size_t count = 0;

        friend bool operator==(const Key &, const Key &) = default;
    };

    Key key() const { return {begin, end, records.size()}; }
};

/// What the charts show. A view, valid while it is passed.
struct ChartHistory {
    ChartHistory(const std::vector<SystemMetrics> &samples) : recent(samples) { } // Implicit.
    ChartHistory(const std::vector<SystemMetrics> &samples, std::optional<MeanWindow> window)
        : recent(samples),
          means(window)
    {
    }

    const std::vector<SystemMetrics> &recent; ///< The newest minute, oldest first.
    std::optional<MeanWindow> means = {};     ///< Absent: the charts show the newest minute.
};

} // namespace corvane
