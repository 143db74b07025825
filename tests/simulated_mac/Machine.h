#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace corvane::simulated {

/// One channel of the reporting library with what it gains in a second.
struct Channel {
    enum class Format { simple, states, histogram };
    struct State {
        std::optional<std::string> name;
        std::int64_t perSecond = 0; ///< Ticks of the 24 MHz clock.
    };

    std::string group;
    std::optional<std::string> subgroup = {};
    std::string name;
    std::optional<std::string> unit = {};
    Format format = Format::simple;
    std::int64_t perSecond = 0; ///< Of a simple channel, in its unit.
    std::vector<State> states = {};
    /// Seconds between two moves of the counter; 0: it moves always; infinite: it stands still.
    double publishedEvery = 0;
};

/// The GPU's entry in the device registry, with one entry below it for each client.
struct Graphics {
    struct Client {
        std::optional<std::string> creator;   ///< "pid 123, name"
        std::vector<std::int64_t> times = {}; ///< Nanoseconds, one for each of its queues.
        std::string className = "AGXDeviceUserClient";
    };
    std::optional<std::int64_t> memoryUsed = {}; ///< Bytes.
    std::vector<Client> clients = {};
};

struct Sensor {
    std::optional<std::string> product;
    std::optional<double> celsius; ///< Absent: the sensor has no event.
};

struct Process {
    int pid = 0;
    std::string name;
    std::uint64_t footprint = 0;
    bool inspectable = true;                  ///< Another user's process refuses to be looked at.
    std::vector<std::uint8_t> arguments = {}; ///< The kernel's argument block.
    int parent = 1;
    std::string folder = "/"; ///< Its working folder.
    std::vector<std::string> openFiles = {};
    struct Mapping {
        std::string path; ///< Empty: memory of its own.
        std::uint64_t size = 0;
    };
    std::vector<Mapping> mappings = {};
};

/// The kernel's argument block of a process.
std::vector<std::uint8_t> argumentBlock(const std::string &path,
                                        const std::vector<std::string> &arguments,
                                        std::optional<std::int32_t> count = {});

/// A Mac as data: everything that the simulated interfaces answer from.
struct Machine {
    struct Pages {
        std::uint32_t free = 0;
        std::uint32_t active = 0;
        std::uint32_t inactive = 0;
        std::uint32_t wired = 0;
        std::uint32_t purgeable = 0;
        std::uint32_t compressor = 0;
        std::uint32_t external = 0;
    };

    /// Ticks of 10 ms that a CPU gains in a second.
    struct Load {
        std::uint32_t user = 0;
        std::uint32_t system = 0;
        std::uint32_t idle = 100;
        std::uint32_t nice = 0;
    };

    std::string brand;
    std::uint64_t memoryBytes = 0;
    std::uint64_t pageSize = 16384;
    std::uint32_t statisticsWords =
        38; ///< Of the kernel's memory statistics; grew with the system.
    Pages pages = {};
    std::uint64_t swapTotal = 0;
    std::uint64_t swapUsed = 0;
    std::int32_t pressureLevel = 1;
    std::vector<Load> cpus = {};

    bool hasReportingFramework = true; ///< At its framework path.
    bool hasReportingLibrary = true;   ///< At its plain path.
    bool reportingIsLoaded = false;    ///< In the process before anyone opens it.
    std::string missingSymbol = {};    ///< One that the reporting library does not have.
    std::vector<Channel> channels = {};
    /// Groups that the system refuses: with one of their channels it refuses the whole
    /// subscription.
    std::set<std::string> refusedGroups = {};

    bool hasPowerManager = true; ///< A virtual machine has none.
    std::map<std::string, std::vector<std::uint8_t>> tables =
        {};                                ///< Properties of the power manager.
    std::optional<Graphics> graphics = {}; ///< Absent: the registry does not tell of the GPU.
    std::optional<std::int32_t> gpuLimitMebibytes = {}; ///< Set by an administrator; 0: unset.
    std::vector<Sensor> sensors = {};
    std::vector<Process> processes = {};
};

/// The bytes of a voltage-state table: pairs of a 32-bit frequency and 32 bits of millivolts.
std::vector<std::uint8_t> voltageStates(
    const std::vector<std::pair<std::uint32_t, std::uint32_t>> &records);

/// An eight-core laptop with the first chip of the family.
Machine baseM1();

/// Sixteen cores; tables in kHz; the reporting library at its plain path only; sensors that share
/// their names.
Machine maxM4();

/// Two dies with twenty-four cores, each with channels of its own.
Machine ultraM2();

/// Six fast and twelve slower cores, none of them named as efficient; tables found through
/// "acc-clusters"; macOS 27, with energy published every two seconds.
Machine proM5();

/// `m1`, `max`, `ultra` or `m5pro`; absent for any other name.
std::optional<Machine> machineNamed(const std::string &name);

} // namespace corvane::simulated
