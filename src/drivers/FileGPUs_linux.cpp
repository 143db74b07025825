#include "drivers/FileGPUs_linux.h"

#include "drivers/GPUFiles_linux.h"
#include "drivers/GPUNames_linux.h"
#include "gpu/GPUQuietTime_linux.h"
#include "gpu/GPUSleepGate.h"
#include "platform/KernelFile_linux.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace corvane {

namespace {

Coverage whenAsleep(Coverage awake)
{
    return awake == Coverage::known ? Coverage::asleep : awake;
}

Coverage expected(bool isPublished)
{
    return isPublished ? Coverage::known : Coverage::unpublished;
}

} // namespace

GPUCoverage expectedCoverage(const GPUDevice &device, const std::string &name)
{
    return {.device = QString::fromStdString(device.folder),
            .name = QString::fromStdString(name),
            .integrated = device.integrated,
            .usesSystemMemory = device.integrated,
            .load = expected(device.driver != GPUDriver::nouveau),
            .watts = expected(!device.integrated),
            .memory = expected(device.driver == GPUDriver::amdgpu)};
}

/// One GPU with its gate.
class FileGPUs::Member {
public:
    Member(const GPUDevice &device, const std::string &name)
        : m_device(device),
          m_runtimeStatus(device.folder + "/power/runtime_status"),
          m_awake(expectedCoverage(device, name))
    {
    }

    const GPUDevice &device() const { return m_device; }

    /// Its files are searched for anew at the next reading, if that is due: more of them may have
    /// appeared.
    void forgetFilesWhenDue()
    {
        constexpr int firstMinutes = 5;
        constexpr int minutesBetweenSearches = 10;
        const bool isDue = m_minutes < firstMinutes || m_minutes % minutesBetweenSearches == 0;
        if (isDue || (m_files && m_files->count() < m_mostFiles))
            m_files.reset();
        ++m_minutes;
    }

    /// Absent when it is asleep, or left alone so that it may fall asleep.
    std::optional<GPUReading> read(double now)
    {
        m_state = State::leftAlone;
        if (m_gate.isQuiet(now))
            return std::nullopt;
        m_isAwake = m_gate.admits(m_runtimeStatus.read());
        m_state = m_isAwake ? State::open : State::asleep;
        if (!m_isAwake)
            return std::nullopt;
        if (!m_files)
            open();
        GPUReading raw = m_files->read(now);
        setCoverage(raw, now);
        const bool idle = wasIdle(m_last ? &*m_last : nullptr, raw);
        GPUReading reading = withShares(raw);
        m_last = std::move(raw);
        // An integrated GPU is awake for as long as its display is, and saves little by sleeping.
        if (m_device.integrated || !m_gate.isQuietDue(idle))
            return reading;
        if (const auto seconds = m_quietTime.secondsFor(m_device, now)) {
            m_gate.keepQuietUntil(now + *seconds);
            m_state = State::leftAlone;
        }
        return reading;
    }

    GPUAccess::State state() const { return m_state; }

    GPUAccess access() const
    {
        return {.device = m_device.folder,
                .address = m_device.address,
                .folder = m_device.folder,
                .integrated = m_device.integrated,
                .state = m_state};
    }

    /// Null while it cannot be read.
    const APUMetrics *apuMetrics() const
    {
        return m_isAwake && m_files && m_files->apuMetrics() ? &*m_files->apuMetrics() : nullptr;
    }

    GPUCoverage coverage() const
    {
        GPUCoverage coverage = m_awake;
        if (!m_isAwake) {
            coverage.load = whenAsleep(coverage.load);
            coverage.watts = whenAsleep(coverage.watts);
            coverage.memory = whenAsleep(coverage.memory);
        }
        return coverage;
    }

private:
    using State = GPUAccess::State;

    void open()
    {
        m_files = std::make_unique<GPUFiles>(m_device);
        m_mostFiles = std::max(m_mostFiles, m_files->count());
        if (m_device.driver != GPUDriver::amdgpu)
            return;
        if (const std::string name = amdProductName(m_device); !name.empty())
            m_awake.name = QString::fromStdString(name);
    }

    void setCoverage(const GPUReading &reading, double now)
    {
        const bool load = reading.busyFraction || reading.idleMilliseconds;
        const bool watts = reading.watts || reading.microjoules;
        m_awake.load = expected(m_load.update(load, now));
        m_awake.watts = expected(m_watts.update(watts, now));
        m_awake.memory = expected(m_memory.update(reading.memoryUsed.has_value(), now));
        m_awake.memoryTotal = m_files->memoryTotal();
        m_awake.memoryOwn = m_files->memoryOwn();
    }

    /// With load and watts of the time since the last reading, so that whoever gets the reading
    /// late, or twice, still gets the same. Idle times stand still while the machine sleeps, and a
    /// GPU would look busy for all of that time: after a long gap they give no load.
    GPUReading withShares(GPUReading reading) const
    {
        constexpr double longestGap = 3; // Seconds; there is a reading a second.
        const bool live = m_last && reading.seconds - m_last->seconds <= longestGap;
        const GPUReading *before = live ? &*m_last : nullptr;
        reading.busyFraction = gpuBusyShare(before, reading);
        reading.watts = gpuWatts(before, reading);
        return reading;
    }

    GPUDevice m_device;
    KernelFile m_runtimeStatus;
    GPUSleepGate m_gate = {};
    GPUQuietTime m_quietTime = {};
    std::unique_ptr<GPUFiles> m_files = {}; ///< Made when the GPU is seen awake.
    std::size_t m_mostFiles = 0;            ///< Of all searches for them.
    int m_minutes = 0;                      ///< Since it was found.
    std::optional<GPUReading> m_last = {};
    bool m_isAwake = true;
    State m_state = State::asleep; ///< Until it is read.
    GPUCoverage m_awake;           ///< What it tells while it is awake.
    KnownLately m_load = {};
    KnownLately m_watts = {};
    KnownLately m_memory = {};
};

FileGPUs::FileGPUs(std::string root) : m_root(std::move(root)) { }

FileGPUs::~FileGPUs() = default;

/// A GPU that stays keeps its gate.
void FileGPUs::setDevices(const FileDevices &devices)
{
    if (!std::ranges::equal(devices.gpus, m_members, {}, {}, &Member::device)) {
        const std::vector<std::string> names = gpuNames(devices.gpus, m_root);
        std::vector<Member> found;
        for (std::size_t place = 0; place < devices.gpus.size(); ++place) {
            const GPUDevice &device = devices.gpus[place];
            const auto known = std::ranges::find(m_members, device, &Member::device);
            found.push_back(known == m_members.end() ? Member(device, names[place])
                                                     : std::move(*known));
        }
        m_members = std::move(found);
        m_access.reset();
    }

    for (Member &member : m_members)
        member.forgetFilesWhenDue();

    if (!devices.npu)
        m_npu.reset();
    else if (!m_npu || m_npu->device() != *devices.npu)
        m_npu.emplace(*devices.npu);
}

FileGPUsReading FileGPUs::read(double now)
{
    FileGPUsReading reading;
    reading.gpus.reserve(m_members.size());
    reading.coverage.reserve(m_members.size());
    const APUMetrics *apu = nullptr;
    for (Member &member : m_members) {
        if (auto gpu = member.read(now))
            reading.gpus.push_back(std::move(*gpu));
        reading.coverage.push_back(member.coverage());
        if (member.apuMetrics())
            apu = member.apuMetrics();
    }
    if (m_npu)
        reading.npu = m_npu->read(apu, now);
    reading.access = access();
    return reading;
}

/// The same list until something of it changes.
std::shared_ptr<const std::vector<GPUAccess>> FileGPUs::access()
{
    if (!m_access
        || !std::ranges::equal(*m_access, m_members, {}, &GPUAccess::state, &Member::state)) {
        std::vector<GPUAccess> gpus;
        std::ranges::transform(m_members, std::back_inserter(gpus), &Member::access);
        m_access = std::make_shared<const std::vector<GPUAccess>>(std::move(gpus));
    }
    return m_access;
}

} // namespace corvane
