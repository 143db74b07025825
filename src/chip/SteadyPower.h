#pragma once

#include "records/ChipReading.h"

#include <optional>
#include <vector>

namespace corvane {

/// The watts of one part of the chip, from energy that its counter may publish in batches. A
/// counter that moves every tick gives the watts of the tick; one that stands still now and then
/// gives the mean between its moves of the last five seconds, held until the next move. Pure.
class SteadyWatts {
public:
    /// What is known of the part while its counter stands still.
    enum class Standstill {
        working,  ///< It used energy, which is still to be published.
        idle,     ///< It used no energy, or that of earlier ticks is still to be published.
        published ///< A counter that is published together with this one moved: it used no energy.
    };

    /// Adds a tick of this many seconds and returns the watts at its end. `standstill` counts where
    /// the tick has no joules. Absent: the counter has not moved for five seconds, or not yet often
    /// enough to know the interval of a batch.
    std::optional<double> add(double joules, double seconds, Standstill standstill);

private:
    /// A moment up to which all energy is known.
    struct Mark {
        double time = 0;
        double joules = 0;
    };

    bool isBatched() const;
    bool isStale() const;
    void forgetStart();
    void addMark(double joules);
    std::optional<double> meanWatts() const;

    double m_time = 0;                        ///< Seconds since the first tick began.
    std::optional<double> m_stillAtWork = {}; ///< When the counter last stood still at work.
    bool m_hasMoved = false;
    /// The newest mark and those of the last five seconds, at least two where there are two. The
    /// first one is the start of the first tick, which may lie within a batch.
    std::vector<Mark> m_marks = {{}};
    std::optional<double> m_watts = {};
};

/// Replaces the watts of single ticks by steady ones, and marks those that the chip does not
/// publish as denied. Owned by the chip source, used on its thread.
class SteadyPower {
public:
    /// `seconds` is the interval that the reading covers.
    void apply(ChipReading &reading, double seconds);

private:
    SteadyWatts m_cpu = {};
    SteadyWatts m_gpu = {};
    SteadyWatts m_ane = {};
};

} // namespace corvane
