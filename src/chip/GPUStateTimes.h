#pragma once

#include "records/ChipReading.h"

#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// Sums up the time that GPUs spent in each active performance state. Made for one tick.
class GPUStateTimes {
public:
    /// `time` in any unit, the same for all calls; at least 0.
    void add(std::string_view state, double time);

    /// The state with the longest single time; of equals the first. Empty: no state was active.
    const std::string &dominant() const { return m_dominant; }

    /// The ten largest shares of the active time from 1 % on, in the natural order of their names.
    std::vector<GPUStateShare> shares() const;

private:
    struct StateTime {
        std::string name = {};
        double time = 0;
    };

    std::vector<StateTime> m_states = {}; ///< In the order of appearance.
    double m_total = 0;
    double m_longest = 0;
    std::string m_dominant = {};
};

} // namespace corvane
