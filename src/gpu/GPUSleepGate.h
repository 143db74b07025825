#pragma once

#include <optional>
#include <string_view>

namespace corvane {

/// Decides when a GPU may be read, so that looking at it neither wakes it nor keeps it awake.
///
/// A GPU that sleeps is left alone. One that is awake but idle would fall asleep if it were not
/// read, since each access restarts the device's own countdown: after three idle ticks it is left
/// alone for longer than that countdown, then read once if it is still awake, and so on until it
/// sleeps or works. Holds no file and no clock.
class GPUSleepGate {
public:
    /// True until the quiet time is over: nothing at all of the device may be touched.
    bool isQuiet(double now) const { return now < m_quietUntil; }

    /// Whether the device may be read in this tick, by the contents of `power/runtime_status`;
    /// absent where a device has no such file.
    bool admits(std::optional<std::string_view> runtimeStatus);

    /// To be called after each reading, with whether the device was idle. True: a quiet time is
    /// due, if `gpuQuietSeconds` gives one for the device.
    bool isQuietDue(bool idle);

    void keepQuietUntil(double instant);

private:
    double m_quietUntil = 0;
    int m_idleTicks = 0;
    bool m_onTrial = false; ///< Read once after a quiet time.
};

/// How long to leave an idle GPU alone, by the files in the `power` folder of its device; absent
/// for one that never sleeps. Without `autosuspendDelay` the driver has a countdown of its own.
std::optional<double> gpuQuietSeconds(std::optional<std::string_view> runtimeStatus,
                                      std::optional<std::string_view> control,
                                      std::optional<std::string_view> autosuspendDelay);

} // namespace corvane
