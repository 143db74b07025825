#include "simulated_mac/SimulatedMac.h"

#include <cmath>
#include <utility>

namespace corvane::simulated {

namespace {

/// Where the tick counters start: a machine that has been up for long, so that one of them soon
/// wraps.
constexpr double firstTicks = 4294967000.0;

} // namespace

void SimulatedMac::boot(Machine newMachine)
{
    faults().clear();
    const MutexLock lock(processesMutex);
    machine = std::move(newMachine);
    m_clock = 0;
    m_channels.clear();
    for (const Channel &channel : machine.channels) {
        Running running{.residencies = std::vector<double>(channel.states.size(), 0.0)};
        publish(channel, running, 0);
        m_channels.push_back(std::move(running));
    }
    m_exactTicks.assign(machine.cpus.size(), {firstTicks, 0, firstTicks, 0});
    m_ticks.clear();
    openedLibraries.clear();
    reportingIsLoaded = machine.reportingIsLoaded;
    advance(0);
}

void SimulatedMac::advance(double seconds)
{
    m_clock += seconds;
    for (std::size_t index = 0; index < m_channels.size(); ++index) {
        const Channel &channel = machine.channels[index];
        Running &running = m_channels[index];
        running.value += static_cast<double>(channel.perSecond) * seconds;
        for (std::size_t state = 0; state < channel.states.size(); ++state)
            running.residencies[state] +=
                static_cast<double>(channel.states[state].perSecond) * seconds;
        publishUntilNow(channel, running);
    }
    m_ticks.resize(machine.cpus.size());
    for (std::size_t cpu = 0; cpu < machine.cpus.size(); ++cpu) {
        const Machine::Load &load = machine.cpus[cpu];
        const std::array<std::uint32_t, 4> gains{load.user, load.system, load.idle, load.nice};
        for (std::size_t state = 0; state < gains.size(); ++state) {
            double &exact = m_exactTicks[cpu][state];
            exact += gains[state] * seconds;
            m_ticks[cpu][state] = static_cast<std::uint32_t>(std::fmod(exact, 4294967296.0));
        }
    }
}

std::vector<SimulatedMac::Counter> SimulatedMac::publishedCounters() const
{
    std::vector<Counter> counters;
    counters.reserve(m_channels.size());
    for (const Running &running : m_channels)
        counters.push_back(running.published);
    return counters;
}

/// A counter that moves now and then shows what it had when it last moved.
void SimulatedMac::publishUntilNow(const Channel &channel, Running &running) const
{
    const double every = channel.publishedEvery;
    if (every <= 0) {
        publish(channel, running, m_clock);
        return;
    }
    const double moves = std::floor((m_clock - running.publishedAt) / every + 1e-9);
    if (moves >= 1)
        publish(channel, running, running.publishedAt + moves * every);
}

void SimulatedMac::publish(const Channel &channel, Running &running, double time) const
{
    const double since = m_clock - time;
    const auto shown = [since](double value, std::int64_t perSecond) {
        return std::llround(value - static_cast<double>(perSecond) * since);
    };
    running.published.value = shown(running.value, channel.perSecond);
    running.published.residencies.resize(channel.states.size());
    for (std::size_t state = 0; state < channel.states.size(); ++state)
        running.published.residencies[state] =
            shown(running.residencies[state], channel.states[state].perSecond);
    running.publishedAt = time;
}

SimulatedMac &mac()
{
    static SimulatedMac simulated;
    return simulated;
}

} // namespace corvane::simulated
