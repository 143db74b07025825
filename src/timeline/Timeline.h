#pragma once

#include "timeline/ChartHistory.h"
#include "timeline/EnergyLedger.h"
#include "timeline/MeanSeries.h"
#include "timeline/MinuteRecord.h"

#include <optional>
#include <vector>

namespace corvane {

/// A sample of the history file, of a minute that had not ended when the program did.
struct UnsavedSample {
    SystemMetrics sample = {};
    double seconds = 0; ///< Measured, from the sample before.
};

/// What the disk has kept of the time before the start.
struct LoadedMinutes {
    std::vector<MeanRecord> means = {};             ///< Of the last day.
    std::vector<EnergyLedger::Quarter> energy = {}; ///< Of all that is kept.
    std::vector<UnsavedSample> unsaved = {};        ///< Oldest first.
};

/// Turns samples into means over ten seconds, which it keeps for an hour, means over a minute,
/// which it keeps for a day, and energy. Owned by the sampler; main thread. Times are those of the
/// wall clock, so a clock that is set back returns to spans that exist already: these are merged.
class Timeline {
public:
    static constexpr double shortSpan = 10;    ///< Seconds.
    static constexpr double shortKept = 3'600; ///< Windows up to this length show the short spans.
    static constexpr double longKept = 86'400;

    /// Adds a sample. `steadySeconds` is of a clock that is never set. Returns the minute that has
    /// ended with it, if one has.
    std::optional<MinuteRecord> add(const SystemMetrics &sample, double steadySeconds);

    /// Adds what was kept, at any time after the first sample. Returns the minutes among the
    /// unsaved samples that have ended.
    std::vector<MinuteRecord> add(const LoadedMinutes &loaded, const MachineCoverage &machine);

    /// The window of that length up to the last span that can have ended at `now`.
    MeanWindow window(double seconds, double now) const;

    EnergyReport energy(double now) const;

private:
    /// A span that has not ended.
    struct Open {
        std::optional<double> start = {};
        MeanBuilder means = {};
        Energy energy = {};
    };

    std::optional<MinuteRecord> add(double time, const Measures &measures, const Energy &energy);
    void beginShortSpan(double start, double now);
    std::optional<MinuteRecord> beginMinute(double start, double now);
    void seedShortSpans(const std::vector<MeanRecord> &minutes, double now);

    Open m_short;
    Open m_minute;
    // An hour or a day, a span that is partly outside of it, and one merged from both sides.
    MeanSeries m_shortSpans{shortKept + shortSpan, 362};
    MeanSeries m_minutes{longKept + minuteSeconds, 1'442};
    EnergyLedger m_ledger;
    Energy m_sinceStart;
    std::optional<double> m_lastSteady = {};
    double m_lastTime = 0;
};

} // namespace corvane
