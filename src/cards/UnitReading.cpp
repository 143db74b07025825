#include "cards/UnitReading.h"

#include "records/MachineParts.h"
#include "records/MachineTotals.h"
#include "records/SeriesReduction.h"
#include "ui/NumberText.h"

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

double percentOfCeiling(double watts, double ceiling)
{
    return ceiling > 0 ? std::min(watts / ceiling * 100, 100.0) : 0;
}

/// Sets load and watts; absent ones are denied.
void setLoadAndWatts(UnitReading &reading, const std::optional<double> &fraction,
                     const std::optional<double> &watts)
{
    reading.loadPercent = fraction.value_or(0) * 100;
    reading.loadIsDenied = !fraction;
    reading.watts = watts.value_or(0);
    reading.wattsAreDenied = !watts;
}

UnitReading cpuReading(const SystemMetrics &sample, const MachineCoverage &machine)
{
    const std::optional<ChipReading> &chip = sample.chip;
    UnitReading reading{.frequencyIsNominal = machine.cpuFrequencyIsNominal};
    reading.hasWatts = machine.cpuWatts == Coverage::known;
    if (!chip) {
        setLoadAndWatts(reading, {}, {});
        return reading;
    }
    setLoadAndWatts(reading, unlessDenied(chip->cpuActiveFraction, chip->denied.cpuLoad),
                    cpuWatts(sample));
    reading.tempC = chip->cpuTempC ? chip->cpuTempC : chip->packageTempC;
    if (chip->coverage && chip->coverage->cpuFrequency == Coverage::known)
        reading.megahertz = chip->cpuActiveMHz;
    return reading;
}

UnitReading gpuReading(const SystemMetrics &sample, const MachineCoverage &machine)
{
    const GPULoadTotal load = gpuLoadTotal(sample);
    UnitReading reading{.tempC = gpuTemperature(sample), .megahertz = load.megahertz};
    setLoadAndWatts(reading, unlessDenied(load.fraction, load.state != FigureState::known),
                    gpuWatts(sample));
    const bool isOfCards = hasGraphicsCard(machine);
    reading.hasWatts = std::ranges::any_of(machine.gpus, [isOfCards](const GPUCoverage &gpu) {
        return isGraphicsCard(gpu) == isOfCards && gpu.watts == Coverage::known;
    });
    const QString clock = gpuClockText(load.performanceState, load.megahertz);
    if (!clock.isEmpty())
        reading.dominantState = clock;
    reading.integratedStandsIn = load.isStandIn;
    return reading;
}

UnitReading npuReading(const std::optional<ChipReading> &chip, const MachineCoverage &machine)
{
    const NPUMetrics npu = (chip ? chip->npu : std::nullopt).value_or(NPUMetrics());
    UnitReading reading{.megahertz = npu.megahertz};
    setLoadAndWatts(reading, npu.activeFraction, npu.watts);
    reading.hasWatts = machine.npuWatts == Coverage::known;
    if (npu.megahertz)
        reading.dominantState = gigahertzText(*npu.megahertz);
    return reading;
}

} // namespace

UnitReading unitReading(ComputeUnit unit, const SystemMetrics &sample,
                        const MachineCoverage &machine)
{
    switch (unit) {
    case ComputeUnit::cpu:
        return cpuReading(sample, machine);
    case ComputeUnit::gpu:
        return gpuReading(sample, machine);
    case ComputeUnit::ane:
        break;
    }
    return npuReading(sample.chip, machine);
}

double neuralEngineLoad(double watts, const ChipInfo &info)
{
    return percentOfCeiling(watts, info.aneMaxW);
}

QString gpuClockText(const std::optional<QString> &state, const std::optional<double> &megahertz)
{
    // Where a driver has no performance states, the clock in round numbers stands for one.
    const bool isClock = state && state->endsWith(u" MHz"_s);
    QStringList parts;
    if (state && !state->isEmpty() && !(isClock && megahertz))
        parts.append(*state);
    if (megahertz)
        parts.append(gigahertzText(*megahertz));
    return parts.join(u" · "_s);
}

UnitReading unitReading(ComputeUnit unit, const std::optional<ChipReading> &chip,
                        const ChipInfo &info)
{
    static const ChipReading none;
    const ChipReading &from = chip ? *chip : none;
    switch (unit) {
    case ComputeUnit::cpu:
        return {.loadPercent = from.cpuActiveFraction * 100,
                .watts = from.cpuWatts,
                .loadIsDenied = from.denied.cpuLoad,
                .wattsAreDenied = from.denied.cpuWatts,
                .tempC = from.cpuTempC ? from.cpuTempC : from.packageTempC,
                .megahertz = from.cpuActiveMHz};
    case ComputeUnit::gpu:
        return {.loadPercent = from.gpuActiveFraction * 100,
                .watts = from.gpuWatts,
                .loadIsDenied = from.denied.gpuLoad,
                .wattsAreDenied = from.denied.gpuWatts,
                .tempC = from.gpuTempC ? from.gpuTempC : from.packageTempC,
                .dominantState = from.gpuDominantState};
    case ComputeUnit::ane:
        break;
    }
    return {.loadPercent = neuralEngineLoad(from.aneWatts, info),
            .watts = from.aneWatts,
            .loadIsDenied = from.denied.aneWatts,
            .wattsAreDenied = from.denied.aneWatts,
            .tempC = from.aneTempC ? from.aneTempC : from.packageTempC,
            .ceilingWatts = info.aneMaxW};
}

UnitReading newestUnitReading(ComputeUnit unit, const SystemMetrics &current,
                              const std::vector<SystemMetrics> &history, const ChipInfo &info)
{
    constexpr int newest = 5;
    const MachineCoverage &machine = coverageOf(current);
    if (!machine.isWhole)
        return unitReading(unit, current, machine);
    UnitReading reading = unitReading(unit, current.chip, info);
    if (unit != ComputeUnit::gpu)
        return reading;
    if (std::optional<QString> state = dominantGPUState(history, newest))
        reading.dominantState = std::move(state);
    return reading;
}

QString unitStatText(const UnitReading &reading)
{
    QStringList parts;
    if (reading.hasWatts)
        parts.append(wattsText(unlessDenied(reading.watts, reading.wattsAreDenied), 2));
    if (reading.tempC && *reading.tempC > 0)
        parts.append(celsiusText(*reading.tempC));
    return parts.join(u" · "_s);
}

std::optional<QString> unitSubtitle(const UnitReading &reading)
{
    if (reading.ceilingWatts)
        return u"≈%1W max"_s.arg(static_cast<int>(*reading.ceilingWatts));
    if (reading.integratedStandsIn) {
        return reading.dominantState ? *reading.dominantState + u" · integrated"_s
                                     : u"integrated"_s;
    }
    if (reading.dominantState || !reading.megahertz || *reading.megahertz <= 0)
        return reading.dominantState;
    const QString frequency = frequencyText(*reading.megahertz);
    return reading.frequencyIsNominal ? frequency + u" nominal"_s : frequency;
}

QStringList unitPillTexts(const UnitReading &reading)
{
    QStringList texts{percentText(unlessDenied(reading.loadPercent, reading.loadIsDenied))};
    if (reading.hasWatts)
        texts.append(tightWattsText(unlessDenied(reading.watts, reading.wattsAreDenied), 2));
    if (reading.megahertz)
        texts.append(frequencyText(*reading.megahertz).remove(u' '));
    return texts;
}

} // namespace corvane
