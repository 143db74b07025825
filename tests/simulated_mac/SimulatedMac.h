#pragma once

#include "simulated_mac/Faults.h"
#include "simulated_mac/Machine.h"
#include "simulated_mac/Objects.h"
#include "threads/Mutex.h"

#include <array>
#include <vector>

namespace corvane::simulated {

/// The one Mac of this process: a machine, its clock and its counters. A test boots a machine,
/// steps the clock and looks at `accounts` afterwards. Main thread, except for `processes` and what
/// the process interfaces read.
class SimulatedMac {
public:
    /// A base chip, until another machine is booted.
    SimulatedMac() { boot(baseM1()); }

    /// What a channel has counted since the machine was booted.
    struct Counter {
        std::int64_t value = 0;
        std::vector<std::int64_t> residencies = {};
    };

    /// Starts this machine at clock 0 with cleared faults; libraries that were opened are closed.
    void boot(Machine machine);

    /// Advances the clock: counters and ticks grow by the machine's rates.
    void advance(double seconds);

    /// The machine as it is now; changing it changes what follows. No channel may be added.
    Machine machine;

    double clock() const { return m_clock; }

    /// Counters as the reporting library shows them now, in the order of the machine's channels.
    std::vector<Counter> publishedCounters() const;

    /// Ticks of each CPU in the kernel's order of states; they wrap at 32 bits.
    const std::vector<std::array<std::uint32_t, 4>> &ticks() const { return m_ticks; }

    /// Guards `machine.processes`, which background threads read.
    Mutex processesMutex;

    /// Paths that were asked for, with their modes, in order.
    struct OpenedLibrary {
        std::string path;
        int mode = 0;
    };
    std::vector<OpenedLibrary> openedLibraries;
    bool reportingIsLoaded = false;

private:
    struct Running {
        double value = 0;
        std::vector<double> residencies = {};
        Counter published = {};
        double publishedAt = 0;
    };
    void publishUntilNow(const Channel &channel, Running &running) const;
    void publish(const Channel &channel, Running &running, double time) const;

    double m_clock = 0;
    std::vector<Running> m_channels;
    std::vector<std::array<double, 4>> m_exactTicks;
    std::vector<std::array<std::uint32_t, 4>> m_ticks;
};

SimulatedMac &mac();

} // namespace corvane::simulated
