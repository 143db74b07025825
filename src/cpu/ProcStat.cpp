#include "cpu/ProcStat.h"

#include "platform/KernelText.h"
#include "platform/Plausible.h"

namespace corvane {

namespace {

std::optional<CPUTimes> parseTimes(std::string_view text)
{
    // Old kernels wrote fewer columns; the first four were always there.
    constexpr std::size_t leastColumns = CPUTimes::idle + 1;
    CPUTimes times;
    for (std::size_t column = 0; column < CPUTimes::columns; ++column) {
        const auto value = takeUnsigned(text);
        if (!value) {
            const bool isEnd = trimmed(text).empty();
            return isEnd && column >= leastColumns ? std::optional(times) : std::nullopt;
        }
        times.ticks[column] = *value;
    }
    return times;
}

CoreTicks coreTicks(const CPUTimes &times)
{
    const auto sum = [&times](auto... column) {
        return static_cast<std::uint32_t>((times.ticks[column] + ...));
    };
    return {.user = sum(CPUTimes::user),
            .system = sum(CPUTimes::system, CPUTimes::irq, CPUTimes::softIrq, CPUTimes::steal),
            .idle = sum(CPUTimes::idle, CPUTimes::ioWait),
            .nice = sum(CPUTimes::nice)};
}

} // namespace

std::optional<CPULine> takeCPULine(std::string_view &text)
{
    constexpr std::string_view prefix = "cpu";
    while (auto line = takeLine(text)) {
        const auto name = takeWord(*line);
        if (!name || !name->starts_with(prefix)) {
            text = {};
            break;
        }
        const auto cpu = parseUnsigned(name->substr(prefix.size())); // Nothing for the sum of all.
        const auto times = parseTimes(*line);
        if (cpu && *cpu < maxCPUs && times)
            return CPULine{static_cast<std::size_t>(*cpu), *times};
    }
    return std::nullopt;
}

std::optional<std::vector<CoreTicks>> CPUTickCounters::update(std::string_view procStat)
{
    const bool first = m_counters.empty();
    bool anyCPU = false;
    while (const auto line = takeCPULine(procStat)) {
        anyCPU = true;
        if (line->cpu >= m_counters.size())
            m_counters.resize(line->cpu + 1);
        Counter &counter = m_counters[line->cpu];
        // The counters of a CPU that joins later contain its whole past, which is not new.
        if (!first && !counter.seen)
            counter.last = line->times;
        for (std::size_t column = 0; column < CPUTimes::columns; ++column) {
            const std::uint64_t now = line->times.ticks[column];
            const std::uint64_t before = counter.last.ticks[column];
            counter.sum.ticks[column] += now > before ? now - before : 0;
        }
        counter.last = line->times;
        counter.seen = true;
    }
    if (!anyCPU)
        return std::nullopt;

    std::vector<CoreTicks> ticks;
    ticks.reserve(m_counters.size());
    for (const Counter &counter : m_counters)
        ticks.push_back(coreTicks(counter.sum));
    return ticks;
}

} // namespace corvane
