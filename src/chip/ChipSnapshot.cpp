#include "chip/ChipSnapshot.h"

#include <algorithm>
#include <cmath>

// Residencies are counted in millionths: of a tick for CPUs, of the whole time for GPUs. Channels
// of one group are compared by their shares alone, and a fine unit keeps the rounding out of them.

namespace corvane {

namespace {

constexpr double millionths = 1e6;

std::int64_t inMillionths(double amount)
{
    return std::llround(amount * millionths);
}

struct Activity {
    double active = 0; ///< Ticks.
    double idle = 0;
};

/// Of one CPU between two snapshots; none when either lacks it.
Activity activityOf(std::size_t cpu, const ChipSnapshot &from, const ChipSnapshot &to)
{
    if (cpu >= from.cpus.size() || cpu >= to.cpus.size())
        return {};
    const CoreTicks &before = from.cpus[cpu];
    const CoreTicks &now = to.cpus[cpu];
    const auto step = [](std::uint32_t a, std::uint32_t b) { return double(b - a); };
    return {.active = step(before.user, now.user) + step(before.system, now.system)
                + step(before.nice, now.nice),
            .idle = step(before.idle, now.idle)};
}

Activity activityOf(const std::vector<int> &cpus, const ChipSnapshot &from, const ChipSnapshot &to)
{
    Activity sum;
    for (const int cpu : cpus) {
        const Activity one = activityOf(static_cast<std::size_t>(cpu), from, to);
        sum.active += one.active;
        sum.idle += one.idle;
    }
    return sum;
}

/// Ticks that a policy spent in each of the cluster's states; they sum to 0 when not known.
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

/// Active ticks of a cluster by state, in the order of its table; those of an unknown frequency
/// come last.
class ActiveTicks {
public:
    explicit ActiveTicks(const std::vector<std::uint64_t> &states) : m_ticks(states.size() + 1, 0)
    {
    }

    /// In proportion to the times of the policy's states, which count idle time too.
    bool spread(double active, const std::vector<double> &proportions)
    {
        double sum = 0;
        for (const double proportion : proportions)
            sum += proportion;
        if (sum <= 0)
            return false;
        for (std::size_t state = 0; state < proportions.size(); ++state)
            m_ticks[state] += active * proportions[state] / sum;
        return true;
    }

    void add(double active, std::size_t state) { m_ticks[state] += active; }

    double known(std::size_t state) const { return m_ticks[state]; }
    double unknown() const { return m_ticks.back(); }
    std::size_t unknownState() const { return m_ticks.size() - 1; }

private:
    std::vector<double> m_ticks;
};

ActiveTicks activeTicks(const ChipSnapshot &from, const ChipSnapshot &to, std::size_t place,
                        const CPUClusterStates &cluster, double active)
{
    ActiveTicks ticks(cluster.kHz);
    const CPUClusterReading &before = from.clusters[place];
    const CPUClusterReading &now = to.clusters[place];
    const std::size_t policies =
        std::min({cluster.policies.size(), before.policyTimes.size(), now.policyTimes.size()});
    for (std::size_t policy = 0; policy < policies && !cluster.kHz.empty(); ++policy) {
        if (before.policyTimes[policy].empty() || now.policyTimes[policy].empty())
            continue;
        const double share = activityOf(cluster.policies[policy].cpus, from, to).active;
        if (ticks.spread(
                share,
                stateTicks(before.policyTimes[policy], now.policyTimes[policy], cluster.kHz)))
            active -= share;
    }

    std::size_t state = ticks.unknownState();
    if (cluster.kHz.size() == 1)
        state = 0;
    else if (now.presentKHz && !cluster.kHz.empty())
        state = nearestFrequencyState(cluster.kHz, *now.presentKHz);
    ticks.add(std::max(active, 0.0), state);
    return ticks;
}

std::string megahertzName(std::uint64_t kHz)
{
    return std::to_string((kHz + 500) / 1000) + " MHz";
}

/// "IDLE", then every state of the table, so that the k-th state is the k-th entry.
ChipChannel cpuChannel(const ChipSnapshot &from, const ChipSnapshot &to, std::size_t place,
                       const CPUClusterStates &cluster)
{
    const Activity activity = activityOf(cluster.cluster.cpus, from, to);
    const ActiveTicks ticks = activeTicks(from, to, place, cluster, activity.active);

    ChipChannel channel = {.group = ChipChannelGroup::cpu,
                           .subgroup = ChipChannelGroup::cpuSubgroup,
                           .name = cluster.cluster.channel};
    channel.states.reserve(cluster.kHz.size() + 2);
    channel.states.push_back({"IDLE", inMillionths(activity.idle)});
    for (std::size_t state = 0; state < cluster.kHz.size(); ++state)
        channel.states.push_back(
            {megahertzName(cluster.kHz[state]), inMillionths(ticks.known(state))});
    if (ticks.unknown() > 0)
        channel.states.push_back({"ACTIVE", inMillionths(ticks.unknown())});
    return channel;
}

void appendCPUChannels(std::vector<ChipChannel> &channels, const ChipSnapshot &from,
                       const ChipSnapshot &to, const std::vector<CPUClusterStates> &clusters)
{
    const std::size_t known = std::min({clusters.size(), from.clusters.size(), to.clusters.size()});
    for (std::size_t place = 0; place < known; ++place)
        channels.push_back(cpuChannel(from, to, place, clusters[place]));
}

const GPUReading *earlier(const ChipSnapshot &from, const GPUReading &now)
{
    const auto same = std::ranges::find(from.gpus, now.device, &GPUReading::device);
    return same == from.gpus.end() ? nullptr : &*same;
}

/// The busy share between the snapshots. Idle times stand still while the machine sleeps, and a GPU
/// would look busy for all of that time: a long gap tells nothing.
std::optional<double> busyShare(const ChipSnapshot &from, const ChipSnapshot &to,
                                const GPUReading &gpu)
{
    constexpr double longestGap = 3; // Seconds; there is a snapshot a second.
    const bool live = to.seconds - from.seconds <= longestGap;
    return gpuBusyShare(live ? earlier(from, gpu) : nullptr, gpu);
}

/// One a GPU that tells its load. While a discrete one does, those of the package give none: they
/// rest then, and their idle time would halve the load.
void appendGPUChannels(std::vector<ChipChannel> &channels, const ChipSnapshot &from,
                       const ChipSnapshot &to)
{
    for (const bool integrated : {false, true}) {
        bool any = false;
        for (const GPUReading &gpu : to.gpus) {
            const auto busy = busyShare(from, to, gpu);
            if (gpu.integrated != integrated || !busy)
                continue;
            any = true;
            channels.push_back(
                {.group = ChipChannelGroup::gpu,
                 .name = gpu.device,
                 .states = {{gpu.state, inMillionths(*busy)}, {"IDLE", inMillionths(1 - *busy)}}});
        }
        if (any)
            return;
    }
}

ChipChannel energyChannel(const char *name, double joules)
{
    return {.group = ChipChannelGroup::energy,
            .name = name,
            .unit = "uJ",
            .value = inMillionths(joules)};
}

/// True when any package counts its energy.
bool appendPackageEnergy(std::vector<ChipChannel> &channels, const ChipSnapshot &from,
                         const ChipSnapshot &to, double seconds)
{
    bool any = false;
    for (const PackageEnergyReading &now : to.packages) {
        const auto before = std::ranges::find(from.packages, now.zone, &PackageEnergyReading::zone);
        if (before == from.packages.end())
            continue;
        any = true;
        if (const auto joules = packageJoules(*before, now, seconds))
            channels.push_back(energyChannel("CPU Energy", *joules));
    }
    return any;
}

void appendEnergyChannels(std::vector<ChipChannel> &channels, const ChipSnapshot &from,
                          const ChipSnapshot &to)
{
    const double seconds = std::max(to.seconds - from.seconds, 0.0);
    const bool counted = appendPackageEnergy(channels, from, to, seconds);
    for (const GPUReading &gpu : to.gpus) {
        if (gpu.packageWatts && !counted)
            channels.push_back(energyChannel("CPU Energy", *gpu.packageWatts * seconds));
    }
    for (const GPUReading &gpu : to.gpus) {
        if (gpu.integrated)
            continue;
        if (const auto joules = gpuJoules(earlier(from, gpu), gpu, seconds))
            channels.push_back(energyChannel("GPU Energy", *joules));
    }
}

} // namespace

std::vector<ChipChannel> chipChannels(const ChipSnapshot &from, const ChipSnapshot &to,
                                      const std::vector<CPUClusterStates> &clusters)
{
    std::vector<ChipChannel> channels;
    appendEnergyChannels(channels, from, to);
    appendGPUChannels(channels, from, to);
    appendCPUChannels(channels, from, to, clusters);
    return channels;
}

} // namespace corvane
