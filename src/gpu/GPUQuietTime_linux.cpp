#include "gpu/GPUQuietTime_linux.h"

#include "gpu/GPUSleepGate.h"
#include "platform/KernelFile_linux.h"

namespace corvane {

std::optional<double> GPUQuietTime::secondsFor(const GPUDevice &device, double now)
{
    constexpr double secondsBetweenTries = 60;
    if (now < m_nextTry)
        return std::nullopt;
    const std::string power = device.folder + "/power/";
    const auto seconds =
        gpuQuietSeconds(readKernelFile(power + "runtime_status"), readKernelFile(power + "control"),
                        readKernelFile(power + "autosuspend_delay_ms"));
    if (!seconds)
        m_nextTry = now + secondsBetweenTries;
    return seconds;
}

} // namespace corvane
