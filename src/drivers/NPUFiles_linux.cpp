#include "drivers/NPUFiles_linux.h"

#include "gpu/GPUText.h"
#include "platform/KernelText.h"

#include <algorithm>

namespace corvane {

namespace {

template <typename Parser>
auto parsed(KernelFile &file, Parser parse)
{
    return parse(file.read().value_or(std::string_view()));
}

} // namespace

NPUFiles::NPUFiles(const NPUDevice &device)
    : m_device(device),
      m_busyTime(device.folder + "/npu_busy_time_us"),
      m_memory(device.folder + "/npu_memory_utilization"),
      m_clock(device.folder + "/npu_current_frequency_mhz")
{
}

NPUReading NPUFiles::read(const APUMetrics *apu, double now)
{
    NPUReading reading;
    bool tellsLoad = false;
    if (m_device.driver == NPUDriver::intel) {
        reading.metrics = readFiles(now);
        tellsLoad = m_lastBusy.has_value();
    } else if (m_device.driver == NPUDriver::amd && apu) {
        reading.metrics = {
            .activeFraction = apu->npuFraction, .watts = apu->npuWatts, .megahertz = apu->npuMHz};
        tellsLoad = apu->npuFraction.has_value();
    }
    if (m_load.update(tellsLoad, now))
        reading.load = Coverage::known;
    if (m_watts.update(reading.metrics.watts.has_value(), now))
        reading.watts = Coverage::known;
    return reading;
}

NPUMetrics NPUFiles::readFiles(double now)
{
    constexpr double longestGap = 3; // Seconds; there is a reading a second.
    NPUMetrics metrics = {.megahertz = parsed(m_clock, parseClockMHz),
                          .memoryUsed = parsed(m_memory, parseMemoryBytes)};
    const auto busy =
        parsed(m_busyTime, [](std::string_view text) { return parseUnsigned(trimmed(text)); });
    const double elapsed = now - m_lastSeconds;
    if (busy && m_lastBusy && *busy >= *m_lastBusy && elapsed > 0 && elapsed <= longestGap)
        metrics.activeFraction = std::min(double(*busy - *m_lastBusy) / (elapsed * 1e6), 1.0);
    m_lastBusy = busy;
    m_lastSeconds = now;
    return metrics;
}

} // namespace corvane
