#pragma once

#include "timeline/MeanRecord.h"

#include <cstddef>
#include <vector>

namespace corvane {

/// The newest records of one kind, in the order of time. Its memory is taken once and does not
/// grow. Used by one thread.
class MeanSeries {
public:
    /// Keeps records that began at most `seconds` before the newest time, and not more than `most`.
    MeanSeries(double seconds, std::size_t most);

    const std::vector<MeanRecord> &records() const { return m_records; }

    /// In its place by time; one that begins within another is merged with it. A record that begins
    /// more than a day after `now`, when the clock was wrong, is dropped, like those too old.
    void insert(const MeanRecord &record, double now);

private:
    void dropOutside(double now);

    double m_seconds;
    std::size_t m_most;
    std::vector<MeanRecord> m_records;
};

} // namespace corvane
