#pragma once

#include "support/MachineTree.h"

#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace corvane::test {

/// A desktop machine that changes at random, in the same way for the same seed: load and memory
/// vary, cores, the graphics card, sensors and processes appear and disappear, the machine sleeps,
/// and its wall clock is set. Its kernel files are below `root`; it steps the test's monotonic
/// clock.
class SoakMachine {
public:
    explicit SoakMachine(unsigned int seed);

    std::string root() const { return m_tree.root(); }

    /// The wall clock, in seconds since 2001.
    double now() const { return m_now; }

    /// Lets a second or a sleep pass, with changes.
    void live();

    /// Lets a second pass with all devices plugged in and a fixed number of processes.
    void rest();

    /// The processor's mean power over the last second and the sleep before it; 0 if its energy
    /// counter wrapped in the sleep, because the power cannot be known then.
    double cpuWatts() const { return m_restarted && m_seconds > 1 ? 0 : m_joules / m_seconds; }

    /// Free memory. It changes at the expense of used memory alone.
    std::uint64_t freeBytes() const { return m_freeKiB * 1024; }

    /// Upper limits of the readings.
    static constexpr double mostCPUWatts = 60;
    static constexpr double mostGPUWatts = 150;
    static constexpr double mostDegrees = 90;

    /// Counts of what has happened so far.
    struct Events {
        int sleeps = 0;
        int jumpsForward = 0; ///< Of the wall clock.
        int jumpsBack = 0;    ///< Of the wall clock.
        int cores = 0;        ///< Cores that went offline or online.
        int cards = 0;        ///< Cards unplugged or plugged in.
        int sensors = 0;      ///< Sensors unplugged or plugged in.
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
    int m_starts = 0;         ///< Processes started so far.
    double m_seconds = 0;     ///< Time since the last measurement.
    double m_joules = 0;      ///< Energy of the processor in that time.
    bool m_restarted = false; ///< Whether the energy counter wrapped in that time.
    std::uint64_t m_freeKiB = 0;
    std::string m_memory; ///< /proc/meminfo without the free memory.
    Events m_events;
};

} // namespace corvane::test
