#include "gpu/GPUSleepGate.h"

#include "platform/KernelText.h"

namespace corvane {

bool GPUSleepGate::admits(std::optional<std::string_view> runtimeStatus)
{
    if (!runtimeStatus)
        return true;
    // Any other status ("suspended", "suspending", "resuming", "error") forbids an access.
    const std::string_view status = trimmed(*runtimeStatus);
    if (status == "active" || status == "unsupported")
        return true;
    m_idleTicks = 0;
    m_onTrial = false;
    return false;
}

bool GPUSleepGate::isQuietDue(bool idle)
{
    constexpr int idleTicksToQuiet = 3;
    const bool onTrial = m_onTrial;
    m_onTrial = false;
    m_idleTicks = idle ? m_idleTicks + 1 : 0;
    return idle && (onTrial || m_idleTicks >= idleTicksToQuiet);
}

void GPUSleepGate::keepQuietUntil(double instant)
{
    m_quietUntil = instant;
    m_idleTicks = 0;
    m_onTrial = true;
}

std::optional<double> gpuQuietSeconds(std::optional<std::string_view> runtimeStatus,
                                      std::optional<std::string_view> control,
                                      std::optional<std::string_view> autosuspendDelay)
{
    constexpr double margin = 3;
    constexpr double ownCountdown = 6; // Of drivers that do not use the kernel's.
    if (!runtimeStatus || trimmed(*runtimeStatus) == "unsupported")
        return std::nullopt;
    if (!control || trimmed(*control) == "on")
        return std::nullopt;
    if (!autosuspendDelay)
        return ownCountdown + margin;
    const auto milliseconds = parseSigned(trimmed(*autosuspendDelay));
    if (!milliseconds)
        return ownCountdown + margin;
    if (*milliseconds < 0)
        return std::nullopt;
    return double(*milliseconds) / 1000 + margin;
}

} // namespace corvane
