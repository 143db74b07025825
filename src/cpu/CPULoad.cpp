#include "cpu/CPULoad.h"

#include <algorithm>
#include <numeric>

namespace corvane {

namespace {

struct Activity {
    double active = 0; ///< Ticks.
    double idle = 0;
};

/// Of one CPU between two readings; none when either lacks it.
Activity activityOf(int cpu, const std::vector<CoreTicks> &before,
                    const std::vector<CoreTicks> &now)
{
    const auto place = static_cast<std::size_t>(cpu);
    if (place >= before.size() || place >= now.size())
        return {};
    const CoreTicks &a = before[place];
    const CoreTicks &b = now[place];
    // In 32 bits, in which the counters wrap.
    const auto step = [](std::uint32_t from, std::uint32_t to) { return double(to - from); };
    return {.active = step(a.user, b.user) + step(a.system, b.system) + step(a.nice, b.nice),
            .idle = step(a.idle, b.idle)};
}

Activity activityOf(const std::vector<int> &cpus, const CPUSnapshot &from, const CPUSnapshot &to)
{
    Activity sum;
    for (const int cpu : cpus) {
        const Activity one = activityOf(cpu, from.ticks, to.ticks);
        sum.active += one.active;
        sum.idle += one.idle;
    }
    return sum;
}

/// Ticks that a policy spent in each of the cluster's states; their sum is 0 when unknown.
std::vector<double> stateTicks(const std::vector<CPUFrequencyTime> &before,
                               const std::vector<CPUFrequencyTime> &now,
                               const std::vector<std::uint64_t> &states)
{
    const auto sum = [](const std::vector<CPUFrequencyTime> &times) {
        double ticks = 0;
        for (const CPUFrequencyTime &time : times)
            ticks += double(time.ticks);
        return ticks;
    };
    // The counters start again with another driver, or when an administrator resets them.
    const bool restarted = sum(now) < sum(before);

    std::vector<double> ticks(states.size(), 0);
    for (const CPUFrequencyTime &time : now) {
        const auto same = std::ranges::find(before, time.kHz, &CPUFrequencyTime::kHz);
        double step = double(time.ticks);
        if (!restarted && same != before.end())
            step -= double(same->ticks);
        ticks[nearestFrequencyState(states, time.kHz)] += std::max(step, 0.0);
    }
    return ticks;
}

/// Active time of known frequency, and its product with that frequency.
class FrequencyMean {
public:
    void add(double ticks, std::uint64_t kHz)
    {
        m_ticks += ticks;
        m_weightedMHz += ticks * (double(kHz) / 1000);
    }

    /// Spreads active time over a policy's states in proportion to their times, which include idle
    /// time. False when these are unknown.
    bool spread(double active, const std::vector<double> &times,
                const std::vector<std::uint64_t> &states)
    {
        double sum = 0;
        for (const double time : times)
            sum += time;
        if (sum <= 0)
            return false;
        for (std::size_t state = 0; state < times.size(); ++state)
            add(active * times[state] / sum, states[state]);
        return true;
    }

    double megahertz() const { return m_ticks > 0 ? m_weightedMHz / m_ticks : 0; }

private:
    double m_ticks = 0;
    double m_weightedMHz = 0;
};

/// Adds the active time of one cluster, as far as its frequency is known.
void addCluster(FrequencyMean &mean, const CPUCluster &cluster, std::size_t place,
                const CPUSnapshot &from, const CPUSnapshot &to)
{
    if (cluster.kHz.empty())
        return;
    double active = activityOf(cluster.cpus, from, to).active;
    const CPUClusterReading &before = from.clusters[place];
    const CPUClusterReading &now = to.clusters[place];
    const std::size_t policies =
        std::min({cluster.policies.size(), before.policyTimes.size(), now.policyTimes.size()});
    for (std::size_t policy = 0; policy < policies; ++policy) {
        if (before.policyTimes[policy].empty() || now.policyTimes[policy].empty())
            continue;
        const double share = activityOf(cluster.policies[policy].cpus, from, to).active;
        const auto times =
            stateTicks(before.policyTimes[policy], now.policyTimes[policy], cluster.kHz);
        if (mean.spread(share, times, cluster.kHz))
            active -= share;
    }
    active = std::max(active, 0.0);
    if (cluster.kHz.size() == 1)
        mean.add(active, cluster.kHz.front());
    else if (now.presentKHz)
        mean.add(active, cluster.kHz[nearestFrequencyState(cluster.kHz, *now.presentKHz)]);
}

} // namespace

CPULoad cpuLoad(const CPUSnapshot &from, const CPUSnapshot &to,
                const std::vector<CPUCluster> &clusters)
{
    FrequencyMean frequency;
    const std::size_t known = std::min({clusters.size(), from.clusters.size(), to.clusters.size()});
    for (std::size_t place = 0; place < known; ++place)
        addCluster(frequency, clusters[place], place, from, to);
    std::vector<int> cpus(to.ticks.size());
    std::iota(cpus.begin(), cpus.end(), 0);
    const Activity all = activityOf(cpus, from, to);
    const double total = all.active + all.idle;
    return {.activeFraction = total > 0 ? std::optional(1 - all.idle / total) : std::nullopt,
            .activeMHz = frequency.megahertz()};
}

std::optional<int> busiestCPU(const std::vector<int> &cpus, const std::vector<CoreTicks> &before,
                              const std::vector<CoreTicks> &now)
{
    std::optional<int> busiest;
    double most = 0;
    for (const int cpu : cpus) {
        const double active = activityOf(cpu, before, now).active;
        if (active > most) {
            most = active;
            busiest = cpu;
        }
    }
    return busiest;
}

} // namespace corvane
