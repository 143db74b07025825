#include "gpu/NvidiaLibrary_linux.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <initializer_list>

#include <dlfcn.h>

// Types and constants of the library's binary interface; its header is not needed.

namespace corvane {

namespace {

using Result = int;
using Device = void *;

constexpr Result success = 0;
constexpr Result gpuIsLost = 15;
constexpr Result versionMismatch = 18; ///< The driver was updated; lasts until the next start.
constexpr int gpuSensor = 0;
constexpr unsigned int mostDevices = 64;

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

struct LibraryCloser {
    void operator()(void *library) const { dlclose(library); }
};
using LibraryHandle = std::unique_ptr<void, LibraryCloser>;

/// Binds the first of several names that the library has.
template <typename Function>
void bind(Function *&function, void *library, std::initializer_list<const char *> names)
{
    for (const char *name : names) {
        if (!function)
            function = reinterpret_cast<Function *>(dlsym(library, name));
    }
}

} // namespace

struct NvidiaLibrary::Functions {
    LibraryHandle library = nullptr;
    Result (*initialise)() = nullptr;
    Result (*shutdown)() = nullptr;
    Result (*deviceCount)(unsigned int *) = nullptr;
    Result (*deviceByIndex)(unsigned int, Device *) = nullptr;
    Result (*pciInfo)(Device, PCIInfo *) = nullptr;
    bool pciInfoIsThird = false;
    Result (*utilization)(Device, Utilization *) = nullptr;
    Result (*performanceState)(Device, int *) = nullptr;
    Result (*temperature)(Device, int, unsigned int *) = nullptr;
    Result (*versionedTemperature)(Device, VersionedTemperature *) = nullptr;
    Result (*power)(Device, unsigned int *) = nullptr;
    Result (*energy)(Device, unsigned long long *) = nullptr;
    bool lost = false; ///< A call found that the driver or a GPU is gone.

    bool load(const std::string &path);
    std::string addressOf(Device device, unsigned int index);
    NvidiaDeviceReading read(Device device, unsigned int index);

    /// True when the library has the function and it succeeded.
    template <typename Function, typename... Arguments>
    bool call(Function *function, Arguments... arguments)
    {
        if (!function)
            return false;
        const Result result = function(arguments...);
        lost = lost || result == gpuIsLost || result == versionMismatch;
        return result == success;
    }
};

bool NvidiaLibrary::Functions::load(const std::string &path)
{
    library.reset(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL));
    if (!library)
        return false;
    bind(initialise, library.get(), {"nvmlInit_v2", "nvmlInit"});
    bind(shutdown, library.get(), {"nvmlShutdown"});
    bind(deviceCount, library.get(), {"nvmlDeviceGetCount_v2", "nvmlDeviceGetCount"});
    bind(deviceByIndex, library.get(),
         {"nvmlDeviceGetHandleByIndex_v2", "nvmlDeviceGetHandleByIndex"});
    bind(pciInfo, library.get(), {"nvmlDeviceGetPciInfo_v3"});
    pciInfoIsThird = pciInfo != nullptr;
    bind(pciInfo, library.get(), {"nvmlDeviceGetPciInfo_v2", "nvmlDeviceGetPciInfo"});
    bind(utilization, library.get(), {"nvmlDeviceGetUtilizationRates"});
    bind(performanceState, library.get(), {"nvmlDeviceGetPerformanceState"});
    bind(temperature, library.get(), {"nvmlDeviceGetTemperature"});
    bind(versionedTemperature, library.get(), {"nvmlDeviceGetTemperatureV"});
    bind(power, library.get(), {"nvmlDeviceGetPowerUsage"});
    bind(energy, library.get(), {"nvmlDeviceGetTotalEnergyConsumption"});
    return initialise && shutdown && deviceCount && deviceByIndex;
}

std::string NvidiaLibrary::Functions::addressOf(Device device, unsigned int index)
{
    PCIInfo info;
    if (!call(pciInfo, device, &info))
        return "nvidia " + std::to_string(index);
    // The third version's address has more digits; the last byte may not be the end.
    const auto text = [](const auto &bytes) {
        return std::string(bytes.data(), strnlen(bytes.data(), bytes.size()));
    };
    return pciInfoIsThird ? text(info.address) : text(info.legacyAddress);
}

NvidiaDeviceReading NvidiaLibrary::Functions::read(Device device, unsigned int index)
{
    NvidiaDeviceReading reading = {.address = addressOf(device, index)};

    Utilization share;
    if (call(utilization, device, &share) && share.gpuPercent <= 100)
        reading.busyFraction = double(share.gpuPercent) / 100;

    int state = 0;
    if (call(performanceState, device, &state))
        reading.performanceState = state;

    unsigned int celsius = 0;
    VersionedTemperature versioned;
    if (call(temperature, device, gpuSensor, &celsius))
        reading.temperature = celsius;
    else if (call(versionedTemperature, device, &versioned))
        reading.temperature = versioned.celsius;

    unsigned int milliwatts = 0;
    if (call(power, device, &milliwatts))
        reading.watts = double(milliwatts) / 1000;

    unsigned long long millijoules = 0;
    if (call(energy, device, &millijoules))
        reading.millijoules = millijoules;
    return reading;
}

std::unique_ptr<NvidiaLibrary> NvidiaLibrary::open(const std::string &path)
{
    auto functions = std::make_unique<Functions>();
    if (!functions->load(path) || functions->initialise() != success)
        return nullptr;
    return std::unique_ptr<NvidiaLibrary>(new NvidiaLibrary(std::move(functions)));
}

NvidiaLibrary::NvidiaLibrary(std::unique_ptr<Functions> functions)
    : m_functions(std::move(functions))
{
}

NvidiaLibrary::~NvidiaLibrary()
{
    m_functions->shutdown();
}

std::optional<std::vector<NvidiaDeviceReading>> NvidiaLibrary::read()
{
    m_thread.check();
    unsigned int count = 0;
    if (!m_functions->call(m_functions->deviceCount, &count))
        return std::nullopt;
    std::vector<NvidiaDeviceReading> readings;
    for (unsigned int index = 0; index < std::min(count, mostDevices); ++index) {
        Device device = nullptr;
        if (m_functions->call(m_functions->deviceByIndex, index, &device))
            readings.push_back(m_functions->read(device, index));
    }
    if (m_functions->lost)
        return std::nullopt;
    return readings;
}

} // namespace corvane
