#include "gpu/NvidiaGPUs_linux.h"

#include "gpu/GPUText.h"
#include "platform/KernelText.h"
#include "platform/Plausible.h"

#include <algorithm>
#include <utility>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

constexpr double secondsKept = 10; ///< Of lists of processes.

/// Identifies a GPU across readings, whether its address is the library's or the kernel's. A GPU
/// whose address the system hides is "nvidia" until the library tells more.
std::string deviceName(const std::string &address)
{
    return address.empty() ? "nvidia" : "nvidia " + kernelPCIAddress(address);
}

GPUReading gpuReading(const NvidiaDeviceReading &device, double seconds)
{
    constexpr std::uint64_t microjoulesPerMillijoule = 1000;
    GPUReading reading = {.device = QString::fromStdString(deviceName(device.address)),
                          .integrated = device.usesSystemMemory,
                          .seconds = seconds,
                          .state = performanceStateName(device.performanceState),
                          .busyFraction = device.busyFraction,
                          .watts = device.watts,
                          .megahertz = device.megahertz,
                          .memoryUsed = device.memoryUsed,
                          .limit = device.limit};
    if (device.millijoules)
        reading.microjoules = *device.millijoules * microjoulesPerMillijoule;
    if (device.temperature && isTemperature(*device.temperature, celsiusLimitLinux))
        reading.temperatures.push_back(*device.temperature);
    return reading;
}

} // namespace

NvidiaGPUs::NvidiaGPUs(std::string library, std::function<double()> clock, std::string root)
    : m_library(std::move(library)),
      m_clock(std::move(clock)),
      m_root(std::move(root))
{
}

void NvidiaGPUs::setDevices(const std::vector<GPUDevice> &devices)
{
    m_thread.check();
    m_members.clear();
    for (const GPUDevice &device : devices)
        m_members.push_back({device, KernelFile(device.folder + "/power/runtime_status")});

    std::vector<GPUCoverage> known;
    known.reserve(devices.size());
    for (const GPUDevice &device : devices)
        known.push_back(coverageOf(deviceName(device.address)));
    m_coverage = std::move(known);
}

/// Opening the library would wake every one of them.
bool NvidiaGPUs::areAwake()
{
    for (Member &member : m_members)
        member.awake = member.device.folder.empty() || m_gate.admits(member.runtimeStatus.read());
    return !m_members.empty() && std::ranges::all_of(m_members, &Member::awake);
}

/// A GPU that was not known yet is added.
GPUCoverage &NvidiaGPUs::coverageOf(const std::string &device)
{
    const QString name = QString::fromStdString(device);
    const auto known = std::ranges::find(m_coverage, name, &GPUCoverage::device);
    if (known != m_coverage.end())
        return *known;
    const Coverage state = m_library.empty() ? Coverage::noLibrary : Coverage::known;
    return m_coverage.emplace_back(GPUCoverage{.device = name,
                                               .name = u"NVIDIA GPU %1"_s.arg(m_coverage.size()),
                                               .load = state,
                                               .watts = state,
                                               .memory = state});
}

void NvidiaGPUs::setCoverage(Coverage coverage)
{
    for (GPUCoverage &gpu : m_coverage) {
        gpu.load = coverage;
        gpu.watts = gpu.integrated ? Coverage::absent : coverage;
        gpu.memory = coverage;
    }
}

/// One GPU that sleeps keeps the library closed: nothing is read of the others either.
void NvidiaGPUs::setCoverageWhileAsleep()
{
    setCoverage(Coverage::known);
    for (const Member &member : m_members) {
        if (member.awake)
            continue;
        GPUCoverage &gpu = coverageOf(deviceName(member.device.address));
        gpu.load = gpu.watts = gpu.memory = Coverage::asleep;
    }
}

void NvidiaGPUs::setCoverage(const NvidiaReading &reading)
{
    setCoverage(Coverage::unpublished); // Of a GPU that the library does not list.
    for (const NvidiaDeviceReading &device : reading.devices) {
        GPUCoverage &gpu = coverageOf(deviceName(device.address));
        if (!device.name.empty())
            gpu.name = QString::fromStdString(device.name);
        gpu.integrated = device.usesSystemMemory;
        gpu.usesSystemMemory = device.usesSystemMemory;
        gpu.load = device.load;
        gpu.watts = gpu.integrated ? Coverage::absent : device.power;
        gpu.memory = device.memory;
        if (gpu.usesSystemMemory)
            gpu.memoryTotal = machineMemory();
        else if (device.memoryTotal)
            gpu.memoryTotal = device.memoryTotal;
    }
    if (!reading.devices.empty())
        std::erase_if(m_coverage, [](const GPUCoverage &gpu) { return gpu.device == u"nvidia"_s; });
    std::ranges::sort(m_coverage, {}, &GPUCoverage::device);
}

/// All memory of the machine in bytes; absent when the kernel does not tell.
std::optional<std::uint64_t> NvidiaGPUs::machineMemory()
{
    if (!m_machineMemory) {
        const auto text = readKernelFile(m_root + "/proc/meminfo").value_or(std::string());
        std::string_view rest = text;
        while (const auto line = takeKeyValue(rest)) {
            if (line->key == "MemTotal")
                m_machineMemory = parseKibibytes(line->value);
        }
        if (m_machineMemory)
            *m_machineMemory *= 1024;
    }
    return m_machineMemory;
}

void NvidiaGPUs::appendReadings(std::vector<GPUReading> &readings, double now, bool withProcesses)
{
    m_thread.check();
    m_state = GPUAccess::State::leftAlone;
    if (m_library.empty() || m_gate.isQuiet(now))
        return;
    m_state = GPUAccess::State::asleep;
    if (!areAwake()) {
        m_processes.clear();
        setCoverageWhileAsleep();
        closeLibrary();
        return;
    }
    m_state = GPUAccess::State::open;
    if (!m_reader)
        m_reader = std::make_unique<NvidiaReader>(m_library, m_clock);
    const auto newest = m_reader->newest();
    if (newest)
        setCoverage(*newest);
    else
        setCoverage(m_reader->coverage());
    if (newest) {
        keepProcesses(*newest, now);
        for (const NvidiaDeviceReading &device : newest->devices)
            readings.push_back(gpuReading(device, newest->seconds));
        if (startQuietTimeIfIdle(*newest, now)) {
            m_state = GPUAccess::State::leftAlone;
            return;
        }
    }
    m_reader->request(withProcesses);
    m_mayBeOpen = true;
}

void NvidiaGPUs::rest()
{
    m_thread.check();
    m_state = GPUAccess::State::leftAlone;
    closeLibrary();
}

/// They are read less often than the GPUs; those of a GPU that is left alone stay.
void NvidiaGPUs::keepProcesses(const NvidiaReading &reading, double now)
{
    for (const NvidiaDeviceReading &device : reading.devices) {
        if (device.processes)
            m_processes[deviceName(device.address)] = {reading.seconds, *device.processes};
    }
    std::erase_if(m_processes,
                  [now](const auto &entry) { return now - entry.second.seconds > secondsKept; });
}

void NvidiaGPUs::appendAccess(std::vector<GPUAccess> &gpus) const
{
    for (const GPUCoverage &gpu : m_coverage) {
        GPUAccess access = {
            .device = gpu.device.toStdString(), .integrated = gpu.integrated, .state = m_state};
        const auto known = m_processes.find(access.device);
        if (known != m_processes.end())
            access.processes = known->second.list;
        gpus.push_back(std::move(access));
    }
}

/// True when a quiet time began, in which the library is closed.
bool NvidiaGPUs::startQuietTimeIfIdle(const NvidiaReading &reading, double now)
{
    if (reading.seconds == m_lastSeconds)
        return false;
    m_lastSeconds = reading.seconds;
    const bool idle = std::ranges::all_of(reading.devices, [](const NvidiaDeviceReading &device) {
        return isIdleShare(device.busyFraction.value_or(0));
    });
    if (!m_gate.isQuietDue(idle))
        return false;
    const auto seconds = longestQuietSeconds(now);
    if (!seconds)
        return false;
    m_gate.keepQuietUntil(now + *seconds);
    closeLibrary();
    return true;
}

/// Absent when none of the devices ever sleeps.
std::optional<double> NvidiaGPUs::longestQuietSeconds(double now)
{
    std::optional<double> longest;
    for (Member &member : m_members) {
        if (const auto seconds = member.quietTime.secondsFor(member.device, now))
            longest = std::max(longest.value_or(0), *seconds);
    }
    return longest;
}

void NvidiaGPUs::closeLibrary()
{
    if (std::exchange(m_mayBeOpen, false))
        m_reader->release();
}

} // namespace corvane
