#include "gpu/GPUWatch_linux.h"

#include "gpu/GPUFiles_linux.h"
#include "gpu/NvidiaGPUs_linux.h"
#include "platform/KernelFile_linux.h"
#include "threads/OneThread.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace corvane {

namespace {

/// A GPU whose driver publishes its values in files.
class FileGPU {
public:
    explicit FileGPU(const GPUDevice &device)
        : m_device(device),
          m_runtimeStatus(device.folder + "/power/runtime_status")
    {
    }

    const GPUDevice &device() const { return m_device; }

    /// Absent when it is asleep, or left alone so that it may fall asleep.
    std::optional<GPUReading> read(double now)
    {
        if (m_gate.isQuiet(now) || !m_gate.admits(m_runtimeStatus.read()))
            return std::nullopt;
        if (!m_files)
            m_files = std::make_unique<GPUFiles>(m_device);
        GPUReading reading = m_files->read(now);
        const bool idle = wasIdle(m_last ? &*m_last : nullptr, reading);
        m_last = reading;
        // An integrated GPU is awake for as long as its display is, and saves little by sleeping.
        if (m_device.integrated || !m_gate.isQuietDue(idle))
            return reading;
        if (const auto seconds = m_quietTime.secondsFor(m_device, now))
            m_gate.keepQuietUntil(now + *seconds);
        return reading;
    }

private:
    GPUDevice m_device;
    KernelFile m_runtimeStatus;
    GPUSleepGate m_gate = {};
    GPUQuietTime m_quietTime = {};
    std::unique_ptr<GPUFiles> m_files = {}; ///< Made when the GPU is first seen awake.
    std::optional<GPUReading> m_last = {};
};

} // namespace

struct GPUWatch::Devices {
    std::string root;
    std::function<double()> clock;
    NvidiaGPUs nvidia;
    std::vector<FileGPU> gpus = {};
    double nextScan = -std::numeric_limits<double>::infinity();
    OneThread thread = {};

    void scanWhenDue(double now);
};

/// Drivers are loaded late and boxes with a GPU are plugged in; a GPU that stays keeps its gate.
void GPUWatch::Devices::scanWhenDue(double now)
{
    constexpr double secondsBetweenScans = 60;
    if (now < nextScan)
        return;
    nextScan = now + secondsBetweenScans;

    std::vector<FileGPU> found;
    std::vector<GPUDevice> foundNvidia;
    for (const GPUDevice &device : findGPUDevices(root)) {
        if (device.driver == GPUDriver::nvidia) {
            foundNvidia.push_back(device);
            continue;
        }
        const auto known = std::ranges::find(gpus, device, &FileGPU::device);
        found.push_back(known == gpus.end() ? FileGPU(device) : std::move(*known));
    }
    gpus = std::move(found);
    nvidia.setDevices(foundNvidia);
}

GPUWatch::GPUWatch(const std::string &root, std::string nvidiaLibrary,
                   std::function<double()> clock)
    : m_devices(new Devices{
        .root = root, .clock = clock, .nvidia = NvidiaGPUs(std::move(nvidiaLibrary), clock, root)})
{
    m_devices->scanWhenDue(m_devices->clock());
}

GPUWatch::~GPUWatch() = default;

std::vector<GPUReading> GPUWatch::read()
{
    m_devices->thread.check();
    const double now = m_devices->clock();
    m_devices->scanWhenDue(now);
    std::vector<GPUReading> readings;
    for (FileGPU &gpu : m_devices->gpus) {
        if (auto reading = gpu.read(now))
            readings.push_back(std::move(*reading));
    }
    m_devices->nvidia.appendReadings(readings, now);
    return readings;
}

bool GPUWatch::hasDevices() const
{
    return !m_devices->gpus.empty() || m_devices->nvidia.canBeRead();
}

bool GPUWatch::isGPU(const std::string &folder) const
{
    return std::ranges::any_of(m_devices->gpus,
                               [&](const FileGPU &gpu) { return gpu.device().folder == folder; });
}

} // namespace corvane
