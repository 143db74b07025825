#pragma once

#include "platform/BootClock.h"
#include "processes/AIWorkload.h"
#include "threads/Mutex.h"

#include <functional>
#include <map>
#include <vector>

namespace corvane {

/// Counts for how long loaded models have left the GPU unused. It knows only what surveys saw: a
/// count begins with the first survey that found the GPU unused, and anew after a pause of the
/// surveys. A workload of which the load is not known, or that is known to have no model on the
/// GPU, has no count. Safe from any thread.
class IdleTimes {
public:
    static constexpr double leastLoad = 0.01;                  ///< Less is no use of the GPU.
    static constexpr double longestPause = 12.0;               ///< Seconds between two surveys.
    static constexpr std::uint64_t leastGPUMemory = 200 << 20; ///< Bytes; less holds no model.

    /// `clock` returns monotonic seconds.
    explicit IdleTimes(std::function<double()> clock = secondsSinceBoot);

    /// Fills in the idle seconds of a survey's workloads.
    void add(std::vector<AIWorkload> &workloads);

private:
    struct Count {
        std::uint64_t startTime = 0; ///< Of the process, which has this number for a while only.
        double since = 0;
        double seen = 0;
    };

    const std::function<double()> m_clock;
    Mutex m_mutex;
    std::map<std::int64_t, Count> m_counts GUARDED_BY(m_mutex); ///< Of those that are idle, by pid.
};

} // namespace corvane
