#include "models/IdleTimes.h"

#include <utility>

namespace corvane {

IdleTimes::IdleTimes(std::function<double()> clock) : m_clock(std::move(clock)) { }

namespace {

bool leavesGPUUnused(const AIWorkload &workload)
{
    const bool holdsModel =
        workload.gpuMemory.value_or(IdleTimes::leastGPUMemory) >= IdleTimes::leastGPUMemory;
    return holdsModel && workload.gpuFraction && *workload.gpuFraction < IdleTimes::leastLoad;
}

} // namespace

void IdleTimes::add(std::vector<AIWorkload> &workloads)
{
    const double now = m_clock();
    const MutexLock lock(m_mutex);
    std::map<std::int64_t, Count> counts;
    for (AIWorkload &workload : workloads) {
        if (!leavesGPUUnused(workload))
            continue;
        Count count{.startTime = workload.startTime, .since = now, .seen = now};
        const auto before = m_counts.find(workload.pid);
        if (before != m_counts.end() && before->second.startTime == workload.startTime
            && now - before->second.seen <= longestPause)
            count.since = before->second.since;
        workload.details.idleSeconds = static_cast<std::int64_t>(now - count.since);
        counts.insert_or_assign(workload.pid, count);
    }
    m_counts = std::move(counts);
}

} // namespace corvane
