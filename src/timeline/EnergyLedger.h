#pragma once

#include "timeline/Energy.h"

#include <QDate>

#include <vector>

namespace corvane {

/// The energy of one local day.
struct DayEnergy {
    QDate date = {};
    Energy energy = {}; ///< Without seconds if nothing was measured on that day.
};

/// What was measured, as the views show it.
struct EnergyReport {
    Energy sinceStart = {};
    std::vector<DayEnergy> days = {}; ///< A week, the oldest first; the last day is today.

    Energy today() const { return days.empty() ? Energy() : days.back().energy; }
};

/// The energy of the last week by quarters of an hour, which every time zone's midnight divides: a
/// change of the zone, of daylight saving or of the day needs no correction. Used by one thread.
class EnergyLedger {
public:
    /// A quarter of an hour and what was measured in it.
    struct Quarter {
        double start = 0; ///< Seconds since 2001.
        Energy energy = {};
    };

    static constexpr double quarterSeconds = 900;

    EnergyLedger();

    /// Adds to the quarter in which the time lies. Beyond nine days the oldest are dropped.
    void add(double time, const Energy &energy);

    /// The seven local days up to that of `now`.
    std::vector<DayEnergy> week(double now) const;

    const std::vector<Quarter> &quarters() const { return m_quarters; }

private:
    /// The newest answer, which a view asks for every second. Energy of its last day is added to
    /// it, so that it holds while that day lasts and local time keeps its distance from UTC.
    struct Week {
        std::vector<DayEnergy> days = {};
        double lastStart = 0; ///< Of its last day, and the end of that.
        double end = 0;
        int secondsFromUTC = 0;
    };

    std::vector<Quarter> m_quarters; ///< In the order of time.
    mutable Week m_week;
};

} // namespace corvane
