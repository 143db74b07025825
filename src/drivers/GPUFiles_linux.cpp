#include "drivers/GPUFiles_linux.h"

#include "gpu/GPUText.h"
#include "platform/KernelFolder_linux.h"
#include "platform/KernelText.h"

#include <algorithm>
#include <filesystem>
#include <initializer_list>

namespace corvane {

namespace {

namespace fs = std::filesystem;

/// The first of several files that exists.
std::optional<KernelFile> firstOf(std::initializer_list<std::string> paths)
{
    for (const std::string &path : paths) {
        std::error_code error;
        if (fs::exists(path, error))
            return KernelFile(path);
    }
    return std::nullopt;
}

std::optional<std::string_view> textOf(std::optional<KernelFile> &file)
{
    return file ? file->read() : std::nullopt;
}

template <typename Parser>
auto parsed(std::optional<KernelFile> &file, Parser parse)
{
    return parse(textOf(file).value_or(std::string_view()));
}

/// Sensor folders of a device; a card of Intel has one more for each part, which come last.
std::vector<std::string> sensorFolders(const std::string &device)
{
    std::vector<std::string> folders;
    for (const std::string &name : namesInFolder(device + "/hwmon")) {
        if (name.starts_with("hwmon"))
            folders.push_back(device + "/hwmon/" + name);
    }
    std::ranges::sort(folders, {}, [](const std::string &folder) {
        const std::string name = readTrimmedFile(folder + "/name");
        return std::pair(name.find("_gt") != std::string::npos, folder);
    });
    return folders;
}

std::vector<KernelFile> temperatureFiles(const std::string &folder)
{
    std::vector<KernelFile> files;
    for (const std::string &name : namesInFolder(folder)) {
        if (name.starts_with("temp") && name.ends_with("_input"))
            files.emplace_back(folder + "/" + name);
    }
    return files;
}

bool isLabelled(const std::string &path, std::string_view label)
{
    return readTrimmedFile(path) == label;
}

/// The counter of the whole card, where a driver has one for each part too.
std::optional<KernelFile> energyFile(const std::string &folder)
{
    for (const char *number : {"1", "2"}) {
        const std::string path = folder + "/energy" + number;
        if (isLabelled(path + "_label", "card"))
            return KernelFile(path + "_input");
    }
    return firstOf({folder + "/energy1_input", folder + "/energy2_input"});
}

/// Whether the render engine is kept from sleeping: its idle time then does not grow, and the GPU
/// would look busy all the time.
bool neverRests(const GPUDevice &device)
{
    return isLabelled(device.card + "/power/rc6_enable", "0");
}

std::optional<std::uint64_t> readBytes(const std::string &path)
{
    return parseMemoryBytes(readTrimmedFile(path));
}

/// A card may have several pieces of memory, each with a file of its own.
std::vector<std::string> tileMemoryFiles(const std::string &device)
{
    std::vector<std::string> files;
    for (const std::string &name : namesInFolder(device)) {
        if (name.starts_with("tile"))
            files.push_back(device + "/" + name + "/physical_vram_size_bytes");
    }
    return files;
}

/// Whether the firmware counts the watts of a package's parts in the unit that its format says: the
/// whole package is then as much as its sensor measures.
bool agrees(const APUMetrics &metrics, std::optional<double> packageWatts)
{
    if (!metrics.packageWatts || !packageWatts)
        return false;
    return *metrics.packageWatts >= *packageWatts / 2 && *metrics.packageWatts <= *packageWatts * 2;
}

} // namespace

GPUFiles::GPUFiles(const GPUDevice &device)
    : m_device(device),
      m_name(QString::fromStdString(device.folder))
{
    addLoad(device);
    addMemory(device);
    addSensors(device);
}

void GPUFiles::addLoad(const GPUDevice &device)
{
    const std::string &card = device.card;
    const std::string graphics = device.folder + "/tile0/gt0";
    switch (device.driver) {
    case GPUDriver::amdgpu:
        m_busyPercent = firstOf({device.folder + "/gpu_busy_percent"});
        m_levels = firstOf({device.folder + "/pp_dpm_sclk"});
        break;
    case GPUDriver::i915:
        m_idleTime = firstOf({card + "/gt/gt0/rc6_residency_ms", card + "/power/rc6_residency_ms"});
        m_actualClock = firstOf({card + "/gt/gt0/rps_act_freq_mhz", card + "/gt_act_freq_mhz"});
        m_requestedClock = firstOf({card + "/gt/gt0/rps_cur_freq_mhz", card + "/gt_cur_freq_mhz"});
        break;
    case GPUDriver::xe:
        m_idleTime = firstOf({graphics + "/gtidle/idle_residency_ms"});
        m_actualClock = firstOf({graphics + "/freq0/act_freq"});
        m_requestedClock = firstOf({graphics + "/freq0/cur_freq"});
        break;
    case GPUDriver::nouveau:
    case GPUDriver::nvidia:
        break;
    }
    if (neverRests(device))
        m_idleTime.reset();
}

void GPUFiles::addMemory(const GPUDevice &device)
{
    const std::string &folder = device.folder;
    switch (device.driver) {
    case GPUDriver::amdgpu:
        m_ownMemoryTotals = {folder + "/mem_info_vram_total"};
        m_ownMemoryUsed = firstOf({folder + "/mem_info_vram_used"});
        if (device.integrated) {
            m_sharedMemoryTotal = folder + "/mem_info_gtt_total";
            m_sharedMemoryUsed = firstOf({folder + "/mem_info_gtt_used"});
            m_packageParts = firstOf({folder + "/gpu_metrics"});
        }
        break;
    case GPUDriver::i915:
        if (firstOf({device.card + "/lmem_total_bytes"}))
            m_ownMemoryTotals = {device.card + "/lmem_total_bytes"};
        else
            m_ownMemoryTotals = {folder + "/lmem_total_bytes"};
        break;
    case GPUDriver::xe:
        m_ownMemoryTotals = tileMemoryFiles(folder);
        break;
    case GPUDriver::nouveau:
    case GPUDriver::nvidia:
        break;
    }
}

void GPUFiles::addSensors(const GPUDevice &device)
{
    for (const std::string &folder : sensorFolders(device.folder)) {
        if (!m_energy)
            m_energy = energyFile(folder);
        if (!m_power)
            m_power = firstOf({folder + "/power1_average", folder + "/power1_input"});
        for (KernelFile &file : temperatureFiles(folder))
            m_temperatures.push_back(std::move(file));
    }
}

GPUReading GPUFiles::read(double now)
{
    m_thread.check();
    GPUReading reading = {.device = m_name, .integrated = m_device.integrated, .seconds = now};
    reading.busyFraction = parsed(m_busyPercent, parseBusyPercent);
    reading.idleMilliseconds = parsed(m_idleTime, parseIdleTime);

    auto clock = parsed(m_levels, presentLevelMHz);
    if (!clock)
        clock = parsed(m_actualClock, parseClockMHz);
    if (!clock)
        clock = parsed(m_requestedClock, parseClockMHz);
    reading.state = clockStateName(clock);
    reading.megahertz = clock;
    readMemory(reading);
    readPower(reading);

    reading.temperatures.reserve(m_temperatures.size());
    for (KernelFile &file : m_temperatures) {
        if (const auto text = file.read()) {
            if (const auto degrees = parseMillidegrees(*text))
                reading.temperatures.push_back(*degrees);
        }
    }
    return reading;
}

std::size_t GPUFiles::count() const
{
    std::size_t count = m_temperatures.size() + m_ownMemoryTotals.size();
    for (const auto *file :
         {&m_busyPercent, &m_idleTime, &m_levels, &m_actualClock, &m_requestedClock,
          &m_ownMemoryUsed, &m_sharedMemoryUsed, &m_packageParts, &m_energy, &m_power})
        count += file->has_value() ? 1 : 0;
    return count;
}

/// Absent unless all pieces can be read.
void GPUFiles::readMemoryTotals()
{
    std::uint64_t own = 0;
    for (const std::string &path : m_ownMemoryTotals) {
        const auto bytes = readBytes(path);
        if (!bytes)
            return;
        own += *bytes;
    }
    const auto shared = m_sharedMemoryTotal ? readBytes(*m_sharedMemoryTotal) : std::uint64_t(0);
    if (!shared || own + *shared == 0)
        return;
    m_memoryTotal = own + *shared;
    if (m_device.integrated)
        m_memoryOwn = own;
}

void GPUFiles::readMemory(GPUReading &reading)
{
    if (!m_memoryTotal)
        readMemoryTotals();
    const auto own = parsed(m_ownMemoryUsed, parseMemoryBytes);
    const auto shared =
        m_sharedMemoryTotal ? parsed(m_sharedMemoryUsed, parseMemoryBytes) : std::uint64_t(0);
    if (!own || !shared || !m_memoryTotal || *own + *shared > *m_memoryTotal)
        return;
    reading.memoryUsed = *own + *shared;
    if (m_device.integrated)
        reading.memoryOwnUsed = own;
}

void GPUFiles::readPower(GPUReading &reading)
{
    const auto watts = parsed(m_power, parseMicrowatts);
    if (!m_device.integrated) {
        reading.watts = watts;
        reading.microjoules =
            parsed(m_energy, [](std::string_view text) { return parseUnsigned(trimmed(text)); });
        return;
    }
    reading.packageWatts = watts; // An APU's sensor measures the whole socket.
    readPackage(reading);
}

void GPUFiles::readPackage(GPUReading &reading)
{
    m_apuMetrics = parsed(m_packageParts, parseAPUMetrics);
    if (!m_apuMetrics)
        return;
    if (!agrees(*m_apuMetrics, reading.packageWatts)) {
        m_apuMetrics->npuWatts.reset();
        return;
    }
    if (!m_apuMetrics->coreWatts || !m_apuMetrics->graphicsWatts)
        return;
    reading.coreWatts = m_apuMetrics->coreWatts;
    reading.watts = m_apuMetrics->graphicsWatts;
}

} // namespace corvane
