#include "simulated_mac/LivelyLoad.h"

#include "simulated_mac/SimulatedMac.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>

namespace corvane::simulated {

namespace {

constexpr double ticksPerSecond = 24'000'000;

/// A smooth movement around zero, within ±1; each `voice` moves differently.
double unrest(double seconds, int voice)
{
    const double phase = voice * 1.7;
    return 0.5 * std::sin(seconds / 3.1 + phase) + 0.3 * std::sin(seconds / 1.3 + 2 * phase)
        + 0.2 * std::sin(seconds * 2.3 + 3 * phase);
}

/// A second's ticks over the states of a cluster: `idle` of them in the first idle state, the rest
/// around the state that `speed` (0 lowest, 1 highest) asks for.
void spread(Channel &channel, double idle, double speed)
{
    const auto isIdle = [](const Channel::State &state) {
        return state.name == "IDLE" || state.name == "OFF" || state.name == "DOWN";
    };
    std::vector<Channel::State *> active;
    Channel::State *resting = nullptr;
    for (Channel::State &state : channel.states) {
        state.perSecond = 0;
        if (!isIdle(state))
            active.push_back(&state);
        else if (!resting || state.name == "IDLE")
            resting = &state;
    }
    if (!resting)
        idle = 0;
    else
        resting->perSecond = std::llround(ticksPerSecond * idle);

    const double wanted = speed * static_cast<double>(active.size() - 1);
    std::vector<double> weights;
    double sum = 0;
    for (std::size_t state = 0; state < active.size(); ++state) {
        const double distance = std::abs(static_cast<double>(state) - wanted);
        weights.push_back(std::max(0.0, 1.6 - distance) + (state == 0 ? 0.15 : 0));
        sum += weights.back();
    }
    for (std::size_t state = 0; state < active.size(); ++state)
        active[state]->perSecond = std::llround(ticksPerSecond * (1 - idle) * weights[state] / sum);
}

/// The watts that this chip's part takes at full load: what its brand makes of it.
struct FullPower {
    double cpu;
    double gpu;
    double neuralEngine;
};

FullPower fullPower(std::string_view brand)
{
    if (brand.ends_with("Ultra"))
        return {55, 110, 6};
    if (brand.ends_with("Max"))
        return {34, 48, 5};
    if (brand.ends_with("Pro"))
        return {28, 30, 4};
    return {18, 12, 3};
}

/// Seconds between two moves of the counters of millijoules.
double secondsOfBatch(std::string_view brand)
{
    if (brand.starts_with("Apple M5"))
        return 2.1;
    return brand.ends_with("Ultra") ? 1.3 : 0.4;
}

} // namespace

LivelyLoad::LivelyLoad(Mode mode) : m_mode(mode), m_idle(mac().machine)
{
    for (Channel &channel : mac().machine.channels) {
        const bool isFrozen = mode == Mode::asleep && channel.unit == "mJ";
        channel.publishedEvery = isFrozen ? std::numeric_limits<double>::infinity()
            : channel.unit == "mJ"        ? secondsOfBatch(m_idle.brand)
                                          : 0;
    }
}

std::optional<LivelyLoad::Mode> LivelyLoad::modeNamed(std::string_view name)
{
    static const std::map<std::string_view, Mode> modes{{"rounds", Mode::rounds},
                                                        {"idle", Mode::idle},
                                                        {"work", Mode::work},
                                                        {"asleep", Mode::asleep}};
    const auto mode = modes.find(name);
    return mode == modes.end() ? std::nullopt : std::optional(mode->second);
}

LivelyLoad::Demand LivelyLoad::levels() const
{
    constexpr Demand resting{.cpu = 0.04, .gpu = 0.02, .neuralEngine = 0};
    constexpr Demand answering{.cpu = 0.34, .gpu = 0.86, .neuralEngine = 0.4};
    if (m_mode == Mode::work)
        return answering;
    if (m_mode != Mode::rounds)
        return resting;
    // A question every 40 seconds: it is read in two seconds with all cores, and answered for 18.
    const double seconds = mac().clock();
    const double inRound = std::fmod(seconds, 40);
    const double neuralEngine = std::fmod(seconds, 55) < 6 ? 0.4 : 0.01;
    if (inRound >= 8 && inRound < 10)
        return {.cpu = 0.72, .gpu = 0.55, .neuralEngine = neuralEngine};
    if (inRound >= 10 && inRound < 28)
        return {.cpu = answering.cpu, .gpu = answering.gpu, .neuralEngine = neuralEngine};
    return {.cpu = 0.12, .gpu = 0.07, .neuralEngine = neuralEngine};
}

LivelyLoad::Demand LivelyLoad::demand() const
{
    const double unsteadiness = m_mode == Mode::rounds || m_mode == Mode::work ? 0.08 : 0.02;
    const auto around = [&](double level, int voice) {
        return std::clamp(level + unsteadiness * unrest(mac().clock(), voice), 0.01, 1.0);
    };
    const Demand level = levels();
    return {.cpu = around(level.cpu, 1),
            .gpu = m_mode == Mode::asleep ? 0 : around(level.gpu, 2),
            .neuralEngine = level.neuralEngine};
}

void LivelyLoad::step(double seconds)
{
    const Demand now = demand();
    drivePower(now);
    driveClusters(now);
    driveGraphics(now);
    driveProcessors(now);
    driveMemory(now);
    warmUp(now, seconds);
    mac().advance(seconds);
}

void LivelyLoad::drivePower(const Demand &demand)
{
    const FullPower full = fullPower(m_idle.brand);
    const double dies = m_idle.brand.ends_with("Ultra") ? 2 : 1;
    for (Channel &channel : mac().machine.channels) {
        const std::string_view name = channel.name;
        if (name.ends_with("CPU Energy")) // Power grows faster than load: clocks rise with it.
            channel.perSecond =
                std::llround(1000 * full.cpu / dies * (0.02 + 0.98 * std::pow(demand.cpu, 1.4)));
        else if (name == "GPU Energy")
            channel.perSecond = std::llround(
                1e9 * full.gpu * (demand.gpu > 0 ? 0.01 + 0.99 * std::pow(demand.gpu, 1.3) : 0));
        else if (name == "ANE" || name.starts_with("ANE0"))
            channel.perSecond = std::llround(1000 * full.neuralEngine / dies * demand.neuralEngine);
    }
}

void LivelyLoad::driveClusters(const Demand &demand)
{
    int voice = 10;
    for (Channel &channel : mac().machine.channels) {
        if (channel.subgroup != "CPU Complex Performance States")
            continue;
        const bool efficient = channel.name.find("ECP") != std::string::npos
            || channel.name.find("MCP") != std::string::npos;
        const double own = 0.1 * unrest(mac().clock(), ++voice);
        const double active = std::clamp((efficient ? 0.25 : 0) + demand.cpu + own, 0.02, 0.98);
        spread(channel, 1 - active, std::clamp(active + own, 0.0, 1.0));
    }
}

void LivelyLoad::driveGraphics(const Demand &demand)
{
    // The high levels are for short bursts alone.
    const double speed =
        std::clamp(0.1 + 0.55 * demand.gpu + 0.05 * unrest(mac().clock(), 3), 0.0, 1.0);
    for (Channel &channel : mac().machine.channels) {
        if (channel.name == "GPUPH")
            spread(channel, 1 - demand.gpu, speed);
        else if (channel.name == "BSTGPUPH")
            spread(channel, 0, speed);
    }
}

void LivelyLoad::driveProcessors(const Demand &demand)
{
    auto &cpus = mac().machine.cpus;
    for (std::size_t cpu = 0; cpu < cpus.size(); ++cpu) {
        const double own = 0.35 * unrest(mac().clock(), static_cast<int>(cpu) + 40);
        const double busy = std::clamp(demand.cpu * (1 + own) + 0.1 * own, 0.0, 1.0);
        const auto user = static_cast<std::uint32_t>(std::lround(80 * busy));
        const auto system = static_cast<std::uint32_t>(std::lround(20 * busy));
        cpus[cpu] = {.user = user, .system = system, .idle = 100 - user - system};
    }
}

void LivelyLoad::driveMemory(const Demand &demand)
{
    // The context of an answer grows while it is given and is dropped after it.
    m_filled += (demand.gpu > 0.4 ? 1 - m_filled : -m_filled) * 0.02;
    const Machine::Pages &idle = m_idle.pages;
    const auto taken = static_cast<std::uint32_t>(0.6 * m_filled * idle.free);
    Machine::Pages &pages = mac().machine.pages;
    pages.free = idle.free - taken;
    pages.active = idle.active + taken;

    const MutexLock lock(mac().processesMutex);
    auto &processes = mac().machine.processes;
    for (std::size_t index = 0; index < processes.size(); ++index) {
        const auto own = 1 + 0.02 * unrest(mac().clock() / 10, static_cast<int>(index) + 80);
        processes[index].footprint = static_cast<std::uint64_t>(
            static_cast<double>(m_idle.processes[index].footprint) * own);
    }
    if (!processes.empty()) // The model is the last of the list.
        processes.back().footprint += std::uint64_t(taken) * m_idle.pageSize;
}

void LivelyLoad::warmUp(const Demand &demand, double seconds)
{
    constexpr double secondsToWarmUp = 25;
    constexpr double hottest = 42; // Above what an idle machine shows.
    const double target = 0.5 * demand.cpu + 0.5 * demand.gpu;
    m_heat += (target - m_heat) * std::min(1.0, seconds / secondsToWarmUp);
    auto &sensors = mac().machine.sensors;
    for (std::size_t index = 0; index < sensors.size(); ++index) {
        const auto &idle = m_idle.sensors[index].celsius;
        const std::string name = sensors[index].product.value_or("");
        const bool onDie = name.find("MTR") != std::string::npos || name.starts_with("PMU TP")
            || name.starts_with("PMU tdie") || name.starts_with("PMGR");
        if (idle && onDie)
            sensors[index].celsius = std::min(*idle, 50.0) + hottest * m_heat
                + 0.6 * unrest(mac().clock(), static_cast<int>(index));
    }
}

} // namespace corvane::simulated
