#include "gpu/NvidiaGPUs_linux.h"

#include "gpu/GPUText.h"
#include "platform/Plausible.h"

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

GPUReading gpuReading(const NvidiaDeviceReading &device, double seconds)
{
    constexpr std::uint64_t microjoulesPerMillijoule = 1000;
    GPUReading reading = {.device = "nvidia " + device.address,
                          .seconds = seconds,
                          .state = performanceStateName(device.performanceState),
                          .busyFraction = device.busyFraction,
                          .watts = device.watts};
    if (device.millijoules)
        reading.microjoules = *device.millijoules * microjoulesPerMillijoule;
    if (device.temperature && isTemperature(*device.temperature, celsiusLimitLinux))
        reading.temperatures.push_back(*device.temperature);
    return reading;
}

} // namespace

NvidiaGPUs::NvidiaGPUs(std::string library, std::function<double()> clock)
    : m_library(std::move(library)),
      m_clock(std::move(clock))
{
}

void NvidiaGPUs::setDevices(const std::vector<GPUDevice> &devices)
{
    m_thread.check();
    m_members.clear();
    for (const GPUDevice &device : devices)
        m_members.push_back({device, KernelFile(device.folder + "/power/runtime_status")});
}

/// Opening the library would wake every one of them.
bool NvidiaGPUs::areAwake()
{
    for (Member &member : m_members) {
        if (!member.device.folder.empty() && !m_gate.admits(member.runtimeStatus.read()))
            return false;
    }
    return !m_members.empty();
}

void NvidiaGPUs::appendReadings(std::vector<GPUReading> &readings, double now)
{
    m_thread.check();
    if (m_library.empty() || m_gate.isQuiet(now))
        return;
    if (!areAwake()) {
        closeLibrary();
        return;
    }
    if (!m_reader)
        m_reader = std::make_unique<NvidiaReader>(m_library, m_clock);
    if (const auto newest = m_reader->newest()) {
        for (const NvidiaDeviceReading &device : newest->devices)
            readings.push_back(gpuReading(device, newest->seconds));
        if (startQuietTimeIfIdle(*newest, now))
            return;
    }
    m_reader->request();
    m_mayBeOpen = true;
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
