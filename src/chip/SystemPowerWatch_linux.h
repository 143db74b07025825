#pragma once

#include "chip/SystemPower.h"
#include "platform/BootClock.h"
#include "threads/OneThread.h"

#include <functional>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// One thing that measures the power of the machine. A sensor has one file, a battery several.
struct SystemPowerFiles {
    SystemPowerSource source = SystemPowerSource::battery;
    std::string path = {}; ///< Of a sensor its file, of a battery its folder.

    friend bool operator==(const SystemPowerFiles &, const SystemPowerFiles &) = default;
};

/// Reads what the whole machine draws, where something measures it. Firmware may take long to
/// answer, and is asked only every five seconds. Used on one thread, which it may hold up.
class SystemPowerWatch {
public:
    explicit SystemPowerWatch(std::string root, std::function<double()> clock = secondsSinceBoot);

    /// Whether this folder of a device, or link to one, is that of a GPU, whose files are not
    /// touched.
    using IsGPU = std::function<bool(const std::string &folder)>;

    /// Absent while nothing tells it, as on a laptop that is plugged in. To be called once a tick.
    std::optional<SystemPower> read(const IsGPU &isGPU);

private:
    void scanWhenDue(double now, const IsGPU &isGPU);

    std::string m_root;
    std::function<double()> m_clock;
    std::vector<SystemPowerFiles> m_sources = {};
    std::optional<SystemPower> m_power = {}; ///< Of the last read.
    double m_nextScan = -std::numeric_limits<double>::infinity();
    double m_nextRead = -std::numeric_limits<double>::infinity();
    OneThread m_thread = {};
};

} // namespace corvane
