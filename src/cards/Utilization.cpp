#include "cards/Utilization.h"

#include "records/SeriesReduction.h"
#include "ui/NumberText.h"

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

double neuralEnginePercent(double watts, double ceiling)
{
    return ceiling > 0 ? std::min(watts / ceiling * 100, 100.0) : 0;
}

std::optional<QString> dominantState(const SystemMetrics &current,
                                     const std::vector<SystemMetrics> &history)
{
    constexpr int tail = 5;
    if (const std::optional<QString> state = dominantGPUState(history, tail))
        return state;
    return current.chip ? current.chip->gpuDominantState : std::nullopt;
}

} // namespace

double loadPercent(UtilizationKind kind, const std::optional<ChipReading> &chip,
                   const ChipInfo &info)
{
    if (!chip)
        return 0;
    switch (kind) {
    case UtilizationKind::cpu:
        return chip->cpuActiveFraction * 100;
    case UtilizationKind::gpu:
        return chip->gpuActiveFraction * 100;
    case UtilizationKind::ane:
        break;
    }
    return neuralEnginePercent(chip->aneWatts, info.aneMaxW);
}

double unitWatts(UtilizationKind kind, const std::optional<ChipReading> &chip)
{
    if (!chip)
        return 0;
    switch (kind) {
    case UtilizationKind::cpu:
        return chip->cpuWatts;
    case UtilizationKind::gpu:
        return chip->gpuWatts;
    case UtilizationKind::ane:
        break;
    }
    return chip->aneWatts;
}

std::optional<double> unitTempC(UtilizationKind kind, const std::optional<ChipReading> &chip)
{
    if (!chip)
        return std::nullopt;
    std::optional<double> own = chip->aneTempC;
    if (kind == UtilizationKind::cpu)
        own = chip->cpuTempC;
    if (kind == UtilizationKind::gpu)
        own = chip->gpuTempC;
    return own ? own : chip->packageTempC;
}

QString unitStatText(UtilizationKind kind, const std::optional<ChipReading> &chip)
{
    const QString watts = wattsText(unitWatts(kind, chip), 2);
    const std::optional<double> celsius = unitTempC(kind, chip);
    return celsius && *celsius > 0 ? watts + u" · "_s + celsiusText(*celsius) : watts;
}

std::optional<QString> utilizationSubtitle(UtilizationKind kind, const SystemMetrics &current,
                                           const std::vector<SystemMetrics> &history,
                                           const ChipInfo &info)
{
    switch (kind) {
    case UtilizationKind::cpu:
        if (!current.chip || !(current.chip->cpuActiveMHz > 0))
            return std::nullopt;
        return frequencyText(current.chip->cpuActiveMHz, u" "_s);
    case UtilizationKind::gpu:
        return dominantState(current, history);
    case UtilizationKind::ane:
        break;
    }
    return u"≈%1W max"_s.arg(static_cast<int>(info.aneMaxW));
}

QString frequencyText(double megahertz, const QString &space)
{
    if (megahertz >= 1000)
        return fixedText(megahertz / 1000, 2) + space + u"GHz"_s;
    return fixedText(megahertz, 0) + space + u"MHz"_s;
}

} // namespace corvane
