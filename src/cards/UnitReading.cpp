#include "cards/UnitReading.h"

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

/// "3.27 GHz" or "996 MHz", with `space` between number and unit.
QString frequencyText(double megahertz, const QString &space)
{
    if (megahertz >= 1000)
        return fixedText(megahertz / 1000, 2) + space + u"GHz"_s;
    return fixedText(megahertz, 0) + space + u"MHz"_s;
}

} // namespace

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
    return {.loadPercent = percentOfCeiling(from.aneWatts, info.aneMaxW),
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
    UnitReading reading = unitReading(unit, current.chip, info);
    if (unit != ComputeUnit::gpu)
        return reading;
    if (std::optional<QString> state = dominantGPUState(history, newest))
        reading.dominantState = std::move(state);
    return reading;
}

QString unitStatText(const UnitReading &reading)
{
    const QString watts = wattsText(unlessDenied(reading.watts, reading.wattsAreDenied), 2);
    return reading.tempC && *reading.tempC > 0 ? watts + u" · "_s + celsiusText(*reading.tempC)
                                               : watts;
}

std::optional<QString> unitSubtitle(const UnitReading &reading)
{
    if (reading.ceilingWatts)
        return u"≈%1W max"_s.arg(static_cast<int>(*reading.ceilingWatts));
    if (reading.megahertz && *reading.megahertz > 0)
        return frequencyText(*reading.megahertz, u" "_s);
    return reading.dominantState;
}

QStringList unitPillTexts(const UnitReading &reading)
{
    QStringList texts{percentText(unlessDenied(reading.loadPercent, reading.loadIsDenied)),
                      tightWattsText(unlessDenied(reading.watts, reading.wattsAreDenied), 2)};
    if (reading.megahertz)
        texts.append(frequencyText(*reading.megahertz, {}));
    return texts;
}

} // namespace corvane
