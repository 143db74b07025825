#pragma once

#include "records/MachineCoverage.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>

namespace corvane {

// Types and constants of the binary interface of NVIDIA's management library; its header is not
// needed. Sizes and offsets are those of 64-bit systems.

using NvidiaResult = int;
using NvidiaDevice = void *;

namespace nvidia {

inline constexpr NvidiaResult success = 0;
inline constexpr NvidiaResult notSupported = 3;
inline constexpr NvidiaResult noPermission = 4;
inline constexpr NvidiaResult notFound = 6; ///< Of process utilization: nothing new.
inline constexpr NvidiaResult insufficientSize = 7;
inline constexpr NvidiaResult libraryNotFound = 12; ///< One that the library itself needs.
inline constexpr NvidiaResult functionNotFound = 13;
inline constexpr NvidiaResult gpuIsLost = 15;
inline constexpr NvidiaResult versionMismatch = 18; ///< The driver was updated, until a restart.

inline constexpr int gpuSensor = 0;
inline constexpr int graphicsClock = 0;

/// Of `ProcessInfo::bytes`.
inline constexpr std::uint64_t bytesNotAvailable = ~std::uint64_t(0);

// What holds the clocks back, as bits.
inline constexpr unsigned long long powerCap = 0x4;
inline constexpr unsigned long long hardwareSlowdown = 0x8;
inline constexpr unsigned long long softwareThermal = 0x20;
inline constexpr unsigned long long hardwareThermal = 0x40;
inline constexpr unsigned long long powerBrake = 0x80;

struct Utilization {
    unsigned int gpuPercent = 0;
    unsigned int memoryPercent = 0;
};

struct VersionedTemperature {
    unsigned int version = 0x0100000c;
    int sensor = gpuSensor;
    int celsius = 0;
};

/// Large enough for every version of the structure.
struct PCIInfo {
    std::array<char, 16> legacyAddress = {};
    std::array<unsigned int, 5> numbers = {};
    std::array<char, 32> address = {}; ///< From the third version on; once reserved numbers.
};

/// In bytes; `used` includes what the driver reserves.
struct Memory {
    std::uint64_t total = 0;
    std::uint64_t free = 0;
    std::uint64_t used = 0;
};

struct Memory2 {
    unsigned int version = 0x02000028;
    std::uint64_t total = 0;
    std::uint64_t reserved = 0;
    std::uint64_t free = 0;
    std::uint64_t used = 0;
};

/// Of the unsuffixed functions.
struct ProcessInfo1 {
    std::uint32_t pid = 0;
    std::uint64_t bytes = 0;
};

/// Of the functions `_v2` and `_v3`.
struct ProcessInfo {
    std::uint32_t pid = 0;
    std::uint64_t bytes = 0;
    std::uint32_t gpuInstance = 0;
    std::uint32_t computeInstance = 0;
};

struct ProcessSample {
    std::uint32_t pid = 0;
    std::uint64_t microseconds = 0; ///< When it was taken, by the library's own clock.
    std::uint32_t multiprocessorPercent = 0;
    std::uint32_t memoryPercent = 0;
    std::uint32_t encoderPercent = 0;
    std::uint32_t decoderPercent = 0;
};

/// Of the newer function for the same.
struct NewProcessSample {
    std::uint64_t microseconds = 0;
    std::uint32_t pid = 0;
    std::uint32_t multiprocessorPercent = 0;
    std::array<std::uint32_t, 5> others = {};
};

struct NewProcessSamples {
    unsigned int version = 0x01000018;
    unsigned int count = 0;
    std::uint64_t after = 0; ///< Only newer ones, in microseconds.
    NewProcessSample *samples = nullptr;
};

static_assert(sizeof(Utilization) == 8 && sizeof(PCIInfo) == 68 && sizeof(Memory) == 24);
static_assert(sizeof(Memory2) == 40 && offsetof(Memory2, free) == 24);
static_assert(sizeof(ProcessInfo1) == 16 && sizeof(ProcessInfo) == 24);
static_assert(sizeof(ProcessSample) == 32 && sizeof(NewProcessSample) == 40);
static_assert(sizeof(NewProcessSamples) == 24 && sizeof(VersionedTemperature) == 12);

} // namespace nvidia

/// The functions of NVIDIA's management library, bound at run time by the names of all its
/// versions; null where it lacks one. Owned by the library's object, used on its thread.
struct NvidiaFunctions {
    struct Closer {
        void operator()(void *handle) const;
    };
    std::unique_ptr<void, Closer> library = nullptr;

    NvidiaResult (*initialise)() = nullptr;
    NvidiaResult (*shutdown)() = nullptr;
    NvidiaResult (*deviceCount)(unsigned int *) = nullptr;
    NvidiaResult (*deviceByIndex)(unsigned int, NvidiaDevice *) = nullptr;
    NvidiaResult (*pciInfo)(NvidiaDevice, nvidia::PCIInfo *) = nullptr;
    bool pciInfoIsThird = false;
    NvidiaResult (*name)(NvidiaDevice, char *, unsigned int) = nullptr;
    NvidiaResult (*utilization)(NvidiaDevice, nvidia::Utilization *) = nullptr;
    NvidiaResult (*performanceState)(NvidiaDevice, int *) = nullptr;
    NvidiaResult (*clock)(NvidiaDevice, int, unsigned int *) = nullptr;
    NvidiaResult (*temperature)(NvidiaDevice, int, unsigned int *) = nullptr;
    NvidiaResult (*versionedTemperature)(NvidiaDevice, nvidia::VersionedTemperature *) = nullptr;
    NvidiaResult (*power)(NvidiaDevice, unsigned int *) = nullptr;
    NvidiaResult (*powerLimit)(NvidiaDevice, unsigned int *) = nullptr;
    NvidiaResult (*energy)(NvidiaDevice, unsigned long long *) = nullptr;
    NvidiaResult (*clockReasons)(NvidiaDevice, unsigned long long *) = nullptr;
    NvidiaResult (*memory)(NvidiaDevice, nvidia::Memory *) = nullptr;
    NvidiaResult (*memory2)(NvidiaDevice, nvidia::Memory2 *) = nullptr;

    template <typename Info>
    using ProcessList = NvidiaResult (*)(NvidiaDevice, unsigned int *, Info *);
    ProcessList<nvidia::ProcessInfo> computeProcesses = nullptr;
    ProcessList<nvidia::ProcessInfo> graphicsProcesses = nullptr;
    ProcessList<nvidia::ProcessInfo1> computeProcesses1 = nullptr; ///< Bound without the others.
    ProcessList<nvidia::ProcessInfo1> graphicsProcesses1 = nullptr;
    NvidiaResult (*processSamples)(NvidiaDevice, nvidia::ProcessSample *, unsigned int *,
                                   unsigned long long) = nullptr;
    NvidiaResult (*newProcessSamples)(NvidiaDevice, nvidia::NewProcessSamples *) = nullptr;

    bool gpuIsLost = false;     ///< A call found that its GPU is gone.
    bool driverIsNewer = false; ///< A call found that the driver was updated.

    /// Its absence has a reason: `noLibrary` when the file is missing or lacks a function that
    /// cannot be done without.
    Coverage load(const std::string &path);

    /// The function's result; a function that the library lacks gives `functionNotFound`.
    template <typename Function, typename... Arguments>
    NvidiaResult call(Function *function, Arguments... arguments)
    {
        if (!function)
            return nvidia::functionNotFound;
        const NvidiaResult result = function(arguments...);
        gpuIsLost = gpuIsLost || result == nvidia::gpuIsLost;
        driverIsNewer = driverIsNewer || result == nvidia::versionMismatch;
        return result;
    }
};

/// What a result tells of the quantity that was asked for.
Coverage nvidiaCoverage(NvidiaResult result);

} // namespace corvane
