#pragma once

#include "support/MachineTree.h"

#include <cstdint>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace corvane::test {

/// A desktop that lives at random, the same for the same seed: loads go up and down, cores, the
/// graphics card, sensors and processes come and go, it sleeps, and its wall clock is set. Its
/// kernel files lie below `root`; the test's stepped clock is its own. Main thread.
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

    /// More is never drawn, by the one and by the other.
    static constexpr double mostCPUWatts = 60;
    static constexpr double mostGPUWatts = 150;
    static constexpr double mostDegrees = 90;

    int sleeps() const { return m_sleeps; }
    int clockJumps() const { return m_clockJumps; }
    int plugged() const { return m_plugged; }

private:
    static constexpr int cpus = 12;

    int random(int from, int to) { return std::uniform_int_distribution(from, to)(m_random); }
    bool happens(int onceIn) { return random(1, onceIn) == 1; }
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
    int m_sleeps = 0;
    int m_clockJumps = 0;
    int m_plugged = 0;
};

} // namespace corvane::test
