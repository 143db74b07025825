#include "gpu/NvidiaProcesses_linux.h"

#include "platform/Plausible.h"

#include <algorithm>
#include <climits>

namespace corvane {

namespace {

constexpr unsigned int usualCount = 32;
constexpr unsigned int mostCount = 4096;
constexpr unsigned int margin = 8; ///< For processes that start between two calls.

/// How long a load counts of which the library has nothing new: for two surveys of the processes.
constexpr double secondsKept = 6;

/// Calls `fill(count, elements)` with room for the usual number, and once more where that is too
/// little. Absent when it fails; `result` is what it returned last.
template <typename Element, typename Fill>
std::optional<std::vector<Element>> listOf(NvidiaResult &result, Fill fill)
{
    std::vector<Element> elements(usualCount);
    auto count = static_cast<unsigned int>(elements.size());
    result = fill(&count, elements.data());
    if (result == nvidia::insufficientSize) {
        elements.assign(std::min(count, mostCount) + margin, {});
        count = static_cast<unsigned int>(elements.size());
        result = fill(&count, elements.data());
    }
    if (result != nvidia::success)
        return std::nullopt;
    elements.resize(std::min<std::size_t>(count, elements.size()));
    return elements;
}

/// The processes of both lists by their numbers.
class Merged {
public:
    template <typename Info>
    void add(NvidiaFunctions &functions, NvidiaFunctions::ProcessList<Info> list,
             NvidiaDevice device)
    {
        NvidiaResult result = nvidia::success;
        const auto infos = listOf<Info>(result, [&](unsigned int *count, Info *into) {
            return functions.call(list, device, count, into);
        });
        if (!infos)
            return;
        m_told = true;
        for (const Info &info : *infos)
            add(info.pid, info.bytes);
    }

    std::optional<std::vector<GPUProcessUse>> take()
    {
        if (!m_told)
            return std::nullopt;
        std::vector<GPUProcessUse> processes;
        for (const auto &[pid, bytes] : m_bytes)
            processes.push_back({.pid = pid, .bytes = bytes});
        return processes;
    }

private:
    /// A process that is in both lists has one memory, which the larger number covers.
    void add(std::uint32_t pid, std::uint64_t bytes)
    {
        if (pid == 0 || pid > INT_MAX)
            return;
        auto &known = m_bytes[static_cast<std::int32_t>(pid)];
        if (bytes <= largestByteCount) // All ones stand for "not available".
            known = std::max(known.value_or(0), bytes);
    }

    bool m_told = false;
    std::map<std::int32_t, std::optional<std::uint64_t>> m_bytes = {};
};

} // namespace

std::optional<std::vector<GPUProcessUse>> NvidiaProcesses::read(NvidiaFunctions &functions,
                                                                NvidiaDevice device, double now)
{
    Merged merged;
    merged.add(functions, functions.computeProcesses, device);
    merged.add(functions, functions.graphicsProcesses, device);
    merged.add(functions, functions.computeProcesses1, device);
    merged.add(functions, functions.graphicsProcesses1, device);
    auto processes = merged.take();
    if (!processes)
        return std::nullopt;

    readLoads(functions, device, now);
    for (GPUProcessUse &process : *processes) {
        const auto load = m_loads.find(static_cast<std::uint32_t>(process.pid));
        if (load != m_loads.end())
            process.busyFraction = load->second.fraction;
        else
            process.isUnused = m_tellsSince && now - *m_tellsSince > secondsKept;
    }
    return processes;
}

void NvidiaProcesses::readLoads(NvidiaFunctions &functions, NvidiaDevice device, double now)
{
    const std::uint64_t after = m_lastSample;
    NvidiaResult result = nvidia::success;
    const auto samples = listOf<nvidia::ProcessSample>(
        result, [&](unsigned int *count, nvidia::ProcessSample *into) {
            return functions.call(functions.processSamples, device, into, count, after);
        });
    for (const auto &sample : samples.value_or(std::vector<nvidia::ProcessSample>()))
        addLoad(sample.pid, sample.multiprocessorPercent, sample.microseconds, now);

    if (result == nvidia::notSupported || result == nvidia::functionNotFound) {
        const auto newer = listOf<nvidia::NewProcessSample>(
            result, [&](unsigned int *count, nvidia::NewProcessSample *into) {
                nvidia::NewProcessSamples request = {
                    .count = *count, .after = after, .samples = into};
                const NvidiaResult told =
                    functions.call(functions.newProcessSamples, device, &request);
                *count = request.count;
                return told;
            });
        for (const auto &sample : newer.value_or(std::vector<nvidia::NewProcessSample>()))
            addLoad(sample.pid, sample.multiprocessorPercent, sample.microseconds, now);
    }
    if (result != nvidia::success && result != nvidia::notFound)
        m_tellsSince.reset();
    else if (!m_tellsSince)
        m_tellsSince = now;
    std::erase_if(m_loads,
                  [now](const auto &entry) { return now - entry.second.seconds > secondsKept; });
}

/// Several samples of a process may come at once; the last one stands.
void NvidiaProcesses::addLoad(std::uint32_t pid, std::uint32_t percent, std::uint64_t microseconds,
                              double now)
{
    constexpr std::uint32_t all = 100;
    if (percent > all)
        return;
    m_loads[pid] = {.fraction = double(percent) / all, .seconds = now};
    m_lastSample = std::max(m_lastSample, microseconds);
}

} // namespace corvane
