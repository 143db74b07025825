#pragma once

#include "support/MachineTree.h"

#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace corvane::test {

/// A desktop that lives at random, the same for the same seed: loads and memory go up and down,
/// cores, the graphics card, sensors and processes come and go, it sleeps, and its wall clock is
/// set. Its kernel files lie below `root`; the test's stepped clock is its own. Main thread.
class SoakMachine {
public:
    explicit SoakMachine(unsigned int seed);

    std::string root() const { return m_tree.root(); }

    /// The wall clock: seconds since 2001.
    double now() const { return m_now; }

    /// A second passes, or a sleep; things come and go.
    void live();

    /// A second passes with everything in its place and the same processes as ever.
    void rest();

    /// What the processor drew on average over the last second, a sleep included; 0 if its counter
    /// started again in that sleep, after which nobody can tell.
    double cpuWatts() const { return m_restarted && m_seconds > 1 ? 0 : m_joules / m_seconds; }

    /// Memory that nobody uses; the rest of what is there stays as it is or is used.
    std::uint64_t freeBytes() const { return m_freeKiB * 1024; }

    /// More is never drawn, by the one and by the other.
    static constexpr double mostCPUWatts = 60;
    static constexpr double mostGPUWatts = 150;
    static constexpr double mostDegrees = 90;

    /// What has happened so far.
    struct Events {
        int sleeps = 0;
        int jumpsForward = 0; ///< Of the wall clock.
        int jumpsBack = 0;
        int cores = 0; ///< Gone or come back, as the next two.
        int cards = 0;
        int sensors = 0;
    };
    const Events &events() const { return m_events; }

private:
    static constexpr int cpus = 12;

    int random(int from, int to) { return std::uniform_int_distribution(from, to)(m_random); }
    bool happens(int onceIn) { return random(1, onceIn) == 1; }
    void begin();
    void pass(double seconds, double watts);
    void work();
    void plugCore();
    void plugFolder(const std::string &folder);
    void changeProcesses();
    void addProcess(int pid);
    void removeProcess(int pid);
    void writeTimes() const;

    MachineTree m_tree;
    std::mt19937 m_random;
    double m_now = 800'000'000;
    double m_microjoules = 0;
    std::vector<std::uint64_t> m_busy;
    std::vector<std::uint64_t> m_idle;
    std::set<int> m_offline;
    std::set<std::string> m_unplugged;
    std::set<int> m_pids;
    double m_seconds = 0;     ///< Passed since the machine was last looked at.
    double m_joules = 0;      ///< Drawn by the processor in these.
    bool m_restarted = false; ///< Its counter did, in these.
    std::uint64_t m_freeKiB = 0;
    std::string m_memory; ///< The machine's /proc/meminfo, but for what is free.
    Events m_events;
};

} // namespace corvane::test
