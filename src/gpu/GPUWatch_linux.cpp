#include "gpu/GPUWatch.h"

#include "gpu/GPUDevices.h"
#include "gpu/GPUFiles.h"
#include "gpu/GPUSleepGate.h"
#include "gpu/GPUText.h"
#include "gpu/NvidiaReader.h"
#include "platform/KernelFile.h"
#include "platform/Plausible.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

namespace corvane {

namespace {

constexpr double never = -std::numeric_limits<double>::infinity();

/// How long a device has to be left alone to fall asleep. One that never sleeps is not asked again
/// for a while: it may rest for days, and is read all that time.
class QuietTime {
public:
    std::optional<double> secondsOf(const GPUDevice &device, double now)
    {
        constexpr double secondsBetweenTries = 60;
        if (now < m_nextTry)
            return std::nullopt;
        const std::string power = device.folder + "/power/";
        const auto seconds = gpuQuietSeconds(readKernelFile(power + "runtime_status"),
                                             readKernelFile(power + "control"),
                                             readKernelFile(power + "autosuspend_delay_ms"));
        if (!seconds)
            m_nextTry = now + secondsBetweenTries;
        return seconds;
    }

private:
    double m_nextTry = never;
};

/// A GPU whose driver speaks through files.
struct FileGPU {
    explicit FileGPU(const GPUDevice &found)
        : device(found),
          runtimeStatus(found.folder + "/power/runtime_status")
    {
    }

    GPUDevice device;
    KernelFile runtimeStatus;
    GPUSleepGate gate = {};
    QuietTime quiet = {};
    std::unique_ptr<GPUFiles> files = {}; ///< Made when it is first seen awake.
    std::optional<GPUReading> last = {};
};

/// All GPUs of NVIDIA: the library opens and closes them together.
struct NvidiaGPUs {
    struct Member {
        GPUDevice device;
        KernelFile runtimeStatus;
        QuietTime quiet = {};
    };
    std::vector<Member> members = {};
    GPUSleepGate gate = {};
    std::unique_ptr<NvidiaReader> reader = {};
    bool held = false;          ///< The library may be open.
    double lastSeconds = never; ///< Of the reading last looked at.
};

constexpr bool restsAt(double busyShare)
{
    constexpr double leastLoad = 0.01;
    return busyShare < leastLoad;
}

/// A device that tells no load at all must count as idle, or it would be kept awake for good.
bool isIdle(const GPUReading *before, const GPUReading &now)
{
    if (!now.busyFraction && !now.idleMilliseconds)
        return true;
    return restsAt(gpuBusyShare(before, now).value_or(1));
}

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

struct GPUWatch::Devices {
    std::string root;
    std::string nvidiaLibrary;
    std::function<double()> clock;
    std::vector<FileGPU> gpus = {};
    NvidiaGPUs nvidia = {};
    std::vector<GPUReading> readings = {};
    double lastRead = never;
    double nextScan = never;

    void scanWhenDue(double now);
    void read(FileGPU &gpu, double now);
    void readNvidia(double now);
    bool nvidiaIsAwake();
    bool letsNvidiaRest(const NvidiaReading &reading, double now);
    void releaseNvidia();
};

/// Drivers come late and boxes with a GPU are plugged in; what stays keeps its place and its gate.
void GPUWatch::Devices::scanWhenDue(double now)
{
    constexpr double secondsBetweenScans = 60;
    if (now < nextScan)
        return;
    nextScan = now + secondsBetweenScans;

    std::vector<FileGPU> found;
    std::vector<NvidiaGPUs::Member> members;
    for (const GPUDevice &device : findGPUDevices(root)) {
        if (device.driver == GPUDriver::nvidia) {
            members.push_back({device, KernelFile(device.folder + "/power/runtime_status")});
            continue;
        }
        const auto known = std::ranges::find(gpus, device, &FileGPU::device);
        found.push_back(known == gpus.end() ? FileGPU(device) : std::move(*known));
    }
    gpus = std::move(found);
    nvidia.members = std::move(members);
}

void GPUWatch::Devices::read(FileGPU &gpu, double now)
{
    if (gpu.gate.isQuiet(now) || !gpu.gate.admits(gpu.runtimeStatus.read()))
        return;
    if (!gpu.files)
        gpu.files = std::make_unique<GPUFiles>(gpu.device);
    GPUReading reading = gpu.files->read(now);
    const bool idle = isIdle(gpu.last ? &*gpu.last : nullptr, reading);
    gpu.last = reading;
    readings.push_back(std::move(reading));

    // An integrated GPU is awake for as long as its display is, and saves little by sleeping.
    if (gpu.device.integrated || !gpu.gate.restsAfter(idle))
        return;
    if (const auto seconds = gpu.quiet.secondsOf(gpu.device, now))
        gpu.gate.keepQuietUntil(now + *seconds);
}

/// Opening the library would wake every one of them.
bool GPUWatch::Devices::nvidiaIsAwake()
{
    for (NvidiaGPUs::Member &member : nvidia.members) {
        if (!member.device.folder.empty() && !nvidia.gate.admits(member.runtimeStatus.read()))
            return false;
    }
    return !nvidia.members.empty();
}

void GPUWatch::Devices::readNvidia(double now)
{
    if (nvidiaLibrary.empty() || nvidia.gate.isQuiet(now))
        return;
    if (!nvidiaIsAwake()) {
        releaseNvidia();
        return;
    }
    if (!nvidia.reader)
        nvidia.reader = std::make_unique<NvidiaReader>(nvidiaLibrary, clock);
    if (const auto newest = nvidia.reader->newest()) {
        for (const NvidiaDeviceReading &device : newest->devices)
            readings.push_back(gpuReading(device, newest->seconds));
        if (letsNvidiaRest(*newest, now))
            return;
    }
    nvidia.reader->request();
    nvidia.held = true;
}

/// True when a quiet time began, in which the library is closed.
bool GPUWatch::Devices::letsNvidiaRest(const NvidiaReading &reading, double now)
{
    if (reading.seconds == nvidia.lastSeconds)
        return false;
    nvidia.lastSeconds = reading.seconds;
    const bool idle = std::ranges::all_of(reading.devices, [](const NvidiaDeviceReading &device) {
        return restsAt(device.busyFraction.value_or(0));
    });
    if (!nvidia.gate.restsAfter(idle))
        return false;
    std::optional<double> longest;
    for (NvidiaGPUs::Member &member : nvidia.members) {
        if (const auto seconds = member.quiet.secondsOf(member.device, now))
            longest = std::max(longest.value_or(0), *seconds);
    }
    if (!longest)
        return false;
    nvidia.gate.keepQuietUntil(now + *longest);
    releaseNvidia();
    return true;
}

void GPUWatch::Devices::releaseNvidia()
{
    if (std::exchange(nvidia.held, false))
        nvidia.reader->release();
}

GPUWatch::GPUWatch(const std::string &root, std::string nvidiaLibrary,
                   std::function<double()> clock)
    : m_devices(new Devices{
        .root = root, .nvidiaLibrary = std::move(nvidiaLibrary), .clock = std::move(clock)})
{
    m_devices->scanWhenDue(m_devices->clock());
}

GPUWatch::~GPUWatch() = default;

std::shared_ptr<GPUWatch> GPUWatch::shared(const std::string &root)
{
    static std::map<std::string, std::weak_ptr<GPUWatch>> watches;
    std::weak_ptr<GPUWatch> &known = watches[root];
    if (auto watch = known.lock())
        return watch;
    const auto watch = std::make_shared<GPUWatch>(root, root == "/" ? "libnvidia-ml.so.1" : "");
    known = watch;
    return watch;
}

const std::vector<GPUReading> &GPUWatch::readings()
{
    constexpr double sameTick = 0.1;
    const double now = m_devices->clock();
    if (now - m_devices->lastRead < sameTick)
        return m_devices->readings;
    m_devices->lastRead = now;
    m_devices->readings.clear();
    m_devices->scanWhenDue(now);
    for (FileGPU &gpu : m_devices->gpus)
        m_devices->read(gpu, now);
    m_devices->readNvidia(now);
    return m_devices->readings;
}

bool GPUWatch::hasDevices() const
{
    return !m_devices->gpus.empty()
        || (!m_devices->nvidia.members.empty() && !m_devices->nvidiaLibrary.empty());
}

bool GPUWatch::isGPU(const std::string &folder) const
{
    return std::ranges::find(m_devices->gpus, folder,
                             [](const FileGPU &gpu) { return gpu.device.folder; })
        != m_devices->gpus.end();
}

} // namespace corvane
