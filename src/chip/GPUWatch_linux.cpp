#include "chip/GPUWatch_linux.h"

#include "drivers/GPUNames_linux.h"
#include "gpu/NvidiaGPUs_linux.h"
#include "threads/OneThread.h"
#include "threads/Slot.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace corvane {

namespace {

using DevicesPointer = std::shared_ptr<const FileDevices>;
using DevicesSlot = Slot<DevicesPointer>;

constexpr double secondsBetweenScans = 60;

/// Both the kernel's folder of a device and the identity of NVIDIA's end in the address.
QStringView addressOf(const GPUCoverage &gpu)
{
    constexpr qsizetype length = 12; // "0000:01:00.0"
    return QStringView(gpu.device).last(std::min(length, gpu.device.size()));
}

/// Intel's drivers tell the memory in use of a card to administrators alone; what this user's own
/// processes hold of it is a lower bound.
void addHeldMemory(GPUReading &reading, GPUCoverage &coverage, const GPUHandOver &handOver,
                   double now)
{
    if (reading.integrated || reading.memoryUsed || !coverage.memoryTotal)
        return;
    reading.memoryUsed = handOver.heldBytes(reading.device.toStdString(), now);
    reading.memoryIsLowerBound = reading.memoryUsed.has_value();
    if (reading.memoryUsed)
        coverage.memory = Coverage::known;
}

} // namespace

struct GPUWatch::Devices {
    using Reader = BackgroundReader<FileGPUsReading>;

    std::string root;
    std::function<double()> clock;
    ReaderPatience patience;
    NvidiaGPUs nvidia;
    std::shared_ptr<GPUHandOver> handOver;
    std::shared_ptr<ReaderThread> thread;
    std::vector<GPUDevice> gpus = {}; ///< Whose drivers publish files.
    /// The devices that the thread reads, as found last.
    std::shared_ptr<DevicesSlot> found = std::make_shared<DevicesSlot>();
    std::unique_ptr<Reader> reader = {};    ///< Null where there is nothing to read.
    std::vector<GPUCoverage> coverage = {}; ///< Of `gpus`.
    /// Of `gpus`, as published; null until it is known.
    std::shared_ptr<const std::vector<GPUAccess>> access = {};
    bool isPublished = false; ///< `access`.
    std::optional<NPUReading> npu = {};
    double nextScan = -std::numeric_limits<double>::infinity();
    OneThread user = {};

    void scanWhenDue(double now);
    void setReader(bool isNeeded);
    std::vector<GPUReading> readFiles(double now);
    void leaveAlone();
    void publishAccess();
};

/// Drivers are loaded late, and boxes with a GPU are plugged in. Opens no file: that is left to the
/// reader.
void GPUWatch::Devices::scanWhenDue(double now)
{
    if (now < nextScan)
        return;
    nextScan = now + secondsBetweenScans;

    std::vector<GPUDevice> all = findGPUDevices(root);
    const auto isOfFiles = [](const GPUDevice &gpu) { return gpu.driver != GPUDriver::nvidia; };
    const auto nvidias = std::stable_partition(all.begin(), all.end(), isOfFiles);
    nvidia.setDevices({nvidias, all.end()});
    isPublished = false;
    all.erase(nvidias, all.end());
    const auto foundNPU = findNPUDevice(root);
    if (!foundNPU)
        npu.reset();
    else if (!npu)
        npu.emplace();
    if (all != gpus) {
        gpus = std::move(all);
        coverage.clear();
        access.reset();
    }
    found->put(std::make_shared<const FileDevices>(FileDevices{.gpus = gpus, .npu = foundNPU}));
    setReader(!gpus.empty() || foundNPU);
}

void GPUWatch::Devices::setReader(bool isNeeded)
{
    if (!isNeeded)
        reader.reset();
    if (!isNeeded || reader)
        return;
    const auto open = [root = root, found = found] {
        return [files = std::make_shared<FileGPUs>(root), found,
                known = DevicesPointer()](double now) mutable {
            if (const DevicesPointer newest = found->get(); newest != known) {
                files->setDevices(*newest);
                known = newest;
            }
            return files->read(now);
        };
    };
    reader = std::make_unique<Reader>(open, Reader::oldestLive, thread);
}

/// Their driver hangs.
void GPUWatch::Devices::leaveAlone()
{
    if (!access)
        return;
    std::vector<GPUAccess> untouched = *access;
    for (GPUAccess &gpu : untouched)
        gpu.state = GPUAccess::State::leftAlone;
    access = std::make_shared<const std::vector<GPUAccess>>(std::move(untouched));
    isPublished = false;
}

/// The names of the devices need not be copied in each tick. What NVIDIA's library tells of their
/// processes changes at any time.
void GPUWatch::Devices::publishAccess()
{
    if (isPublished && nvidia.coverage().empty())
        return;
    std::vector<GPUAccess> all = access ? *access : std::vector<GPUAccess>();
    nvidia.appendAccess(all);
    handOver->publish(std::move(all));
    isPublished = true;
}

std::vector<GPUReading> GPUWatch::Devices::readFiles(double now)
{
    if (!reader)
        return {};
    reader->request(now, patience);
    auto newest = reader->newest(now);
    if (!newest) {
        if (npu)
            npu->metrics = {};
        leaveAlone();
        return {};
    }
    coverage = std::move(newest->coverage);
    if (access != newest->access) {
        access = newest->access;
        isPublished = false;
    }
    npu = newest->npu;
    for (GPUReading &gpu : newest->gpus) {
        const auto known = std::ranges::find(coverage, gpu.device, &GPUCoverage::device);
        if (known != coverage.end())
            addHeldMemory(gpu, *known, *handOver, now);
    }
    return std::move(newest->gpus);
}

GPUWatch::GPUWatch(const std::string &root, std::string nvidiaLibrary,
                   std::function<double()> clock, std::shared_ptr<GPUHandOver> handOver,
                   ReaderPatience patience, std::shared_ptr<ReaderThread> thread)
    : m_devices(new Devices{.root = root,
                            .clock = clock,
                            .patience = patience,
                            .nvidia = NvidiaGPUs(std::move(nvidiaLibrary), clock, root),
                            .handOver = std::move(handOver),
                            .thread = std::move(thread)})
{
    m_devices->scanWhenDue(m_devices->clock());
}

GPUWatch::~GPUWatch() = default;

std::vector<GPUReading> GPUWatch::read()
{
    m_devices->user.check();
    const double now = m_devices->clock();
    m_devices->scanWhenDue(now);
    std::vector<GPUReading> readings = m_devices->readFiles(now);
    const GPUHandOver &handOver = *m_devices->handOver;
    if (handOver.isShown())
        m_devices->nvidia.appendReadings(readings, now, handOver.isAsked(now));
    else
        m_devices->nvidia.rest();
    m_devices->publishAccess();
    return readings;
}

std::vector<GPUCoverage> GPUWatch::coverage() const
{
    std::vector<GPUCoverage> all = m_devices->coverage;
    if (all.empty() && !m_devices->gpus.empty()) {
        const auto names = numberedGPUNames(m_devices->gpus);
        std::ranges::transform(m_devices->gpus, names, std::back_inserter(all), expectedCoverage);
    }
    std::ranges::copy(m_devices->nvidia.coverage(), std::back_inserter(all));
    std::ranges::sort(all, {}, addressOf);
    return all;
}

const std::optional<NPUReading> &GPUWatch::npu() const
{
    return m_devices->npu;
}

} // namespace corvane
