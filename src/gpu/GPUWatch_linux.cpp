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

/// Intel's drivers tell the memory in use of a card to administrators alone; what this user's own
/// processes hold of it is a lower bound.
void addHeldMemory(GPUReading &reading, const GPUDevice &device, const GPUHandOver &handOver,
                   double now)
{
    const bool isIntels = device.driver == GPUDriver::i915 || device.driver == GPUDriver::xe;
    if (!isIntels || device.integrated || reading.memoryUsed)
        return;
    reading.memoryUsed = handOver.heldBytes(reading.device, now);
    reading.memoryIsLowerBound = reading.memoryUsed.has_value();
}

/// A GPU whose driver publishes its values in files.
class FileGPU {
public:
    explicit FileGPU(const GPUDevice &device)
        : m_device(device),
          m_runtimeStatus(device.folder + "/power/runtime_status")
    {
    }

    const GPUDevice &device() const { return m_device; }

    GPUAccess access() const
    {
        return {.device = m_device.folder,
                .address = m_device.address,
                .folder = m_device.folder,
                .integrated = m_device.integrated,
                .state = m_state};
    }

    /// Absent when it is asleep, or left alone so that it may fall asleep.
    std::optional<GPUReading> read(double now)
    {
        m_state = GPUAccess::State::leftAlone;
        if (m_gate.isQuiet(now))
            return std::nullopt;
        m_state = GPUAccess::State::asleep;
        if (!m_gate.admits(m_runtimeStatus.read()))
            return std::nullopt;
        m_state = GPUAccess::State::open;
        if (!m_files)
            m_files = std::make_unique<GPUFiles>(m_device);
        GPUReading reading = m_files->read(now);
        const bool idle = wasIdle(m_last ? &*m_last : nullptr, reading);
        m_last = reading;
        // An integrated GPU is awake for as long as its display is, and saves little by sleeping.
        if (m_device.integrated || !m_gate.isQuietDue(idle))
            return reading;
        if (const auto seconds = m_quietTime.secondsFor(m_device, now)) {
            m_gate.keepQuietUntil(now + *seconds);
            m_state = GPUAccess::State::leftAlone;
        }
        return reading;
    }

private:
    GPUDevice m_device;
    KernelFile m_runtimeStatus;
    GPUAccess::State m_state = GPUAccess::State::asleep; ///< Until it is read.
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
    std::shared_ptr<GPUHandOver> handOver;
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
                   std::function<double()> clock, std::shared_ptr<GPUHandOver> handOver)
    : m_devices(new Devices{.root = root,
                            .clock = clock,
                            .nvidia = NvidiaGPUs(std::move(nvidiaLibrary), clock, root),
                            .handOver = std::move(handOver)})
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
    std::vector<GPUAccess> access;
    for (FileGPU &gpu : m_devices->gpus) {
        if (auto reading = gpu.read(now)) {
            addHeldMemory(*reading, gpu.device(), *m_devices->handOver, now);
            readings.push_back(std::move(*reading));
        }
        access.push_back(gpu.access());
    }
    GPUHandOver &handOver = *m_devices->handOver;
    m_devices->nvidia.appendReadings(readings, now, handOver.isAsked(now));
    m_devices->nvidia.appendAccess(access);
    handOver.publish(std::move(access));
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
