#include "gpu/NvidiaLibrary_linux.h"

#include "gpu/NvidiaFunctions_linux.h"
#include "gpu/NvidiaProcesses_linux.h"
#include "platform/KernelText.h"
#include "platform/Plausible.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace corvane {

namespace {

constexpr unsigned int mostDevices = 64;

/// The last byte may not be the end.
template <typename Bytes>
std::string textOf(const Bytes &bytes)
{
    return std::string(bytes.data(), strnlen(bytes.data(), bytes.size()));
}

std::string addressOf(NvidiaFunctions &functions, NvidiaDevice device, unsigned int index)
{
    nvidia::PCIInfo info;
    if (functions.call(functions.pciInfo, device, &info) != nvidia::success)
        return "nvidia " + std::to_string(index);
    // The third version's address has more digits.
    return functions.pciInfoIsThird ? textOf(info.address) : textOf(info.legacyAddress);
}

std::string nameOf(NvidiaFunctions &functions, NvidiaDevice device)
{
    std::array<char, 96> bytes = {};
    const auto size = static_cast<unsigned int>(bytes.size());
    if (functions.call(functions.name, device, bytes.data(), size) != nvidia::success)
        return {};
    const std::string name(trimmed(textOf(bytes)));
    return isUtf8(name) ? name : std::string();
}

/// A cause counts before what it causes: a hot card is slowed down by its hardware too.
std::optional<GPULimit> limitOf(unsigned long long reasons)
{
    if (reasons & (nvidia::softwareThermal | nvidia::hardwareThermal))
        return GPULimit::temperature;
    if (reasons & (nvidia::powerCap | nvidia::powerBrake))
        return GPULimit::power;
    if (reasons & nvidia::hardwareSlowdown)
        return GPULimit::hardware;
    return std::nullopt;
}

/// Without reasons, a card that draws all that it may is known to be held back by that.
std::optional<GPULimit> readLimit(NvidiaFunctions &functions, NvidiaDevice device,
                                  std::optional<double> watts)
{
    constexpr double nearly = 0.99;
    unsigned long long reasons = 0;
    if (functions.call(functions.clockReasons, device, &reasons) == nvidia::success)
        return limitOf(reasons);
    unsigned int milliwatts = 0;
    const bool limited =
        functions.call(functions.powerLimit, device, &milliwatts) == nvidia::success;
    if (limited && milliwatts > 0 && watts && *watts >= nearly * double(milliwatts) / 1000)
        return GPULimit::power;
    return std::nullopt;
}

void setMemory(NvidiaDeviceReading &reading, std::uint64_t total, std::uint64_t used)
{
    reading.memory = Coverage::unpublished;
    if (total == 0 || total > largestByteCount || used > total)
        return;
    reading.memory = Coverage::known;
    reading.memoryTotal = total;
    reading.memoryUsed = used;
}

/// The second version tells apart what the driver reserves, which counts neither as used nor as
/// free.
void readMemory(NvidiaFunctions &functions, NvidiaDevice device, NvidiaDeviceReading &reading)
{
    nvidia::Memory2 second;
    NvidiaResult result = functions.call(functions.memory2, device, &second);
    if (result == nvidia::success) {
        const std::uint64_t rest = second.total - std::min(second.total, second.reserved);
        setMemory(reading, second.total, rest - std::min(rest, second.free));
        return;
    }
    nvidia::Memory first;
    const NvidiaResult older = functions.call(functions.memory, device, &first);
    if (older == nvidia::success) {
        setMemory(reading, first.total, first.used);
        return;
    }
    if (older != nvidia::functionNotFound)
        result = older;
    reading.memory = nvidiaCoverage(result);
    reading.usesSystemMemory = result == nvidia::notSupported;
}

/// Absent when none of the processes has a known amount.
std::optional<std::uint64_t> sumOf(const std::vector<GPUProcessUse> &processes)
{
    std::uint64_t sum = 0;
    bool known = processes.empty();
    for (const GPUProcessUse &process : processes) {
        known = known || process.bytes;
        sum += process.bytes.value_or(0);
    }
    return known && sum <= largestByteCount ? std::optional(sum) : std::nullopt;
}

} // namespace

struct NvidiaLibrary::Functions : NvidiaFunctions { };

/// What stays the same while the library is open.
struct NvidiaLibrary::Device {
    unsigned int index = 0;
    NvidiaDevice handle = nullptr;
    std::string address = {};
    std::string name = {};
    NvidiaProcesses processes = {};
};

NvidiaLibrary::NvidiaLibrary(const std::string &path) : m_functions(std::make_unique<Functions>())
{
    m_coverage = m_functions->load(path);
    if (m_coverage == Coverage::known)
        m_coverage = nvidiaCoverage(m_functions->initialise());
    if (m_coverage != Coverage::known)
        m_functions.reset();
}

NvidiaLibrary::~NvidiaLibrary()
{
    if (m_functions)
        m_functions->shutdown();
}

NvidiaDeviceReading NvidiaLibrary::readDevice(Device &device, double now, bool withProcesses)
{
    NvidiaFunctions &functions = *m_functions;
    NvidiaDevice const handle = device.handle;
    if (device.address.empty()) {
        device.address = addressOf(functions, handle, device.index);
        device.name = nameOf(functions, handle);
    }
    NvidiaDeviceReading reading = {.address = device.address, .name = device.name};

    nvidia::Utilization share;
    reading.load = nvidiaCoverage(functions.call(functions.utilization, handle, &share));
    if (reading.load == Coverage::known && share.gpuPercent <= 100)
        reading.busyFraction = double(share.gpuPercent) / 100;

    int state = 0;
    if (functions.call(functions.performanceState, handle, &state) == nvidia::success)
        reading.performanceState = state;

    unsigned int megahertz = 0;
    const NvidiaResult clock =
        functions.call(functions.clock, handle, nvidia::graphicsClock, &megahertz);
    if (clock == nvidia::success && megahertz > 0 && double(megahertz) <= highestMHz)
        reading.megahertz = megahertz;

    unsigned int celsius = 0;
    nvidia::VersionedTemperature versioned;
    if (functions.call(functions.temperature, handle, nvidia::gpuSensor, &celsius)
        == nvidia::success)
        reading.temperature = celsius;
    else if (functions.call(functions.versionedTemperature, handle, &versioned) == nvidia::success)
        reading.temperature = versioned.celsius;

    unsigned int milliwatts = 0;
    reading.power = nvidiaCoverage(functions.call(functions.power, handle, &milliwatts));
    if (reading.power == Coverage::known && double(milliwatts) <= maxWatts * 1000)
        reading.watts = double(milliwatts) / 1000;

    unsigned long long millijoules = 0;
    if (functions.call(functions.energy, handle, &millijoules) == nvidia::success) {
        reading.millijoules = millijoules;
        reading.power = Coverage::known;
    }
    reading.limit = readLimit(functions, handle, reading.watts);

    readMemory(functions, handle, reading);
    if (withProcesses || reading.usesSystemMemory)
        reading.processes = device.processes.read(functions, handle, now);
    if (reading.usesSystemMemory && reading.processes) {
        reading.memoryUsed = sumOf(*reading.processes);
        if (reading.memoryUsed)
            reading.memory = Coverage::known;
    }
    return reading;
}

std::optional<std::vector<NvidiaDeviceReading>> NvidiaLibrary::read(double now, bool withProcesses)
{
    m_thread.check();
    if (!m_functions)
        return std::nullopt;
    NvidiaFunctions &functions = *m_functions;
    unsigned int count = 0;
    const NvidiaResult counted = functions.call(functions.deviceCount, &count);
    if (counted != nvidia::success) {
        m_coverage = nvidiaCoverage(counted);
        return std::nullopt;
    }
    count = std::min(count, mostDevices);
    m_devices.resize(count);
    m_lostGPU = false;
    std::vector<NvidiaDeviceReading> readings;
    for (unsigned int index = 0; index < count; ++index) {
        Device &device = m_devices[index];
        device.index = index;
        functions.gpuIsLost = false;
        if (functions.call(functions.deviceByIndex, index, &device.handle) == nvidia::success) {
            NvidiaDeviceReading reading = readDevice(device, now, withProcesses);
            if (!functions.gpuIsLost)
                readings.push_back(std::move(reading));
        }
        m_lostGPU = m_lostGPU || functions.gpuIsLost;
    }
    if (functions.driverIsNewer)
        m_coverage = Coverage::newDriver;
    else if (m_lostGPU && readings.empty())
        m_coverage = Coverage::unpublished;
    return m_coverage == Coverage::known ? std::optional(std::move(readings)) : std::nullopt;
}

} // namespace corvane
