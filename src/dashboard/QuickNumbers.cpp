#include "dashboard/QuickNumbers.h"

#include "devices/PowerParts.h"
#include "records/MachineParts.h"
#include "records/MachineTotals.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr double narrow = 34;
constexpr double wide = 46;

std::vector<QuickNumber> numbersOfWhole(const SystemMetrics &current)
{
    const ChipReading chip = current.chip.value_or(ChipReading{});
    return {
        {u"MEM"_s, u"Memory"_s, percentText(usedPercent(current.memory)), Theme::memory, narrow},
        {u"CPU"_s, u"CPU"_s,
         percentText(unlessDenied(chip.cpuActiveFraction * 100, chip.denied.cpuLoad)), Theme::cpu,
         narrow},
        {u"GPU"_s, u"GPU"_s,
         percentText(unlessDenied(chip.gpuActiveFraction * 100, chip.denied.gpuLoad)), Theme::gpu,
         narrow},
        {u"PWR"_s, u"Power"_s, tightWattsText(shownTotalWatts(current.chip), 1), Theme::power,
         wide}};
}

QColor faded(const QColor &color)
{
    return Theme::withOpacity(color, Theme::absentOpacity);
}

/// A share in per cent; "zz" for a device that sleeps, an en dash where nothing is known.
QuickNumber shareNumber(const QString &label, const QString &name, std::optional<double> percent,
                        FigureState state, const QColor &color)
{
    if (percent)
        return {label, name, percentText(percent), color, narrow};
    const bool isAsleep = state == FigureState::asleep;
    return {label, name, isAsleep ? u"zz"_s : percentText(percent), faded(color), narrow};
}

QuickNumber gpuMemoryNumber(const GPUMemoryTotal &memory)
{
    QuickNumber number = shareNumber(memory.ofCards ? u"VRAM"_s : u"GPU MEM"_s,
                                     memory.ofCards ? u"VRAM"_s : u"GPU memory"_s,
                                     usedPercent(memory), memory.state, Theme::gpu);
    if (memory.isLowerBound)
        number.value.prepend(u"≥"_s);
    number.minWidth = memory.ofCards ? narrow : wide;
    return number;
}

QuickNumber powerNumber(const SystemMetrics &current, const MachineCoverage &machine)
{
    const std::vector<PowerPart> parts = powerParts(machine);
    const std::optional<double> watts = totalWatts(powerValues(parts, current, machine));
    const bool ofGPU = machine.cpuWatts == Coverage::locked
        && machine.packageWatts != Coverage::known && machine.npuWatts != Coverage::known;
    return {ofGPU ? u"GPU PWR"_s : u"PWR"_s, ofGPU ? u"GPU power"_s : u"Power"_s,
            tightWattsText(watts, 1), watts ? Theme::power : faded(Theme::power), wide};
}

} // namespace

std::vector<QuickNumber> quickNumbers(const SystemMetrics &current)
{
    const MachineCoverage &machine = coverageOf(current);
    if (machine.isWhole)
        return numbersOfWhole(current);

    std::vector<QuickNumber> numbers{
        {u"MEM"_s, u"Memory"_s, percentText(usedPercent(current.memory)), Theme::memory, narrow}};
    if (const GPUMemoryTotal memory = gpuMemoryTotal(current); memory.state != FigureState::absent)
        numbers.push_back(gpuMemoryNumber(memory));
    const std::optional<double> cpu = current.chip
        ? unlessDenied(current.chip->cpuActiveFraction * 100, current.chip->denied.cpuLoad)
        : std::nullopt;
    numbers.push_back(shareNumber(u"CPU"_s, u"CPU"_s, cpu, FigureState::unreadable, Theme::cpu));
    if (const GPULoadTotal load = gpuLoadTotal(current); load.state != FigureState::absent) {
        const auto percent = unlessDenied(load.fraction * 100, load.state != FigureState::known);
        numbers.push_back(shareNumber(u"GPU"_s, u"GPU"_s, percent, load.state, Theme::gpu));
    }
    if (hasWatts(machine))
        numbers.push_back(powerNumber(current, machine));
    return numbers;
}

QString machineNote(const SystemMetrics &current)
{
    const MachineCoverage &machine = coverageOf(current);
    if (machine.isWhole)
        return {};
    const std::optional<double> watts = current.chip ? current.chip->systemWatts : std::nullopt;
    if (watts && !hasWatts(machine))
        return systemWattsText(*watts, machine.systemWattsSource);
    return tellsCPUAndMemoryAlone(machine) ? u"no GPU, watts or temperatures to read here"_s
                                           : QString();
}

} // namespace corvane
