#include "devices/PowerParts.h"

#include "records/MachineParts.h"
#include "records/MachineTotals.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

PowerPart part(PowerSource source, const QString &label, const QColor &color,
               Coverage coverage = Coverage::known)
{
    return {source, label, color, Theme::withOpacity(color, 0.55), coverage};
}

bool tellsWatts(const GPUCoverage &gpu)
{
    return gpu.watts == Coverage::known;
}

/// The watts of the counted GPUs: known if one tells them, else why the first does not.
Coverage gpuWattsCoverage(const std::vector<GPUCoverage> &gpus)
{
    if (std::ranges::any_of(gpus, tellsWatts))
        return Coverage::known;
    return gpus.empty() ? Coverage::absent : gpus.front().watts;
}

bool gpusAreOnPackage(const MachineCoverage &machine)
{
    return !machine.gpus.empty() && !hasGraphicsCard(machine) && machine.gpus.front().integrated;
}

std::optional<double> knownCPUWatts(const SystemMetrics &sample)
{
    if (!sample.chip->coverage)
        return unlessDenied(sample.chip->cpuWatts, sample.chip->cpuWatts <= 0);
    return cpuWatts(sample);
}

std::optional<double> countedGPUWatts(const SystemMetrics &sample)
{
    if (!sample.chip->coverage)
        return unlessDenied(sample.chip->gpuWatts, sample.chip->gpuWatts <= 0);
    return gpuWatts(sample);
}

std::optional<double> npuWatts(const ChipReading &chip)
{
    return chip.npu ? chip.npu->watts : std::nullopt;
}

std::optional<double> restWatts(const SystemMetrics &sample, const MachineCoverage &machine)
{
    const ChipReading &chip = *sample.chip;
    if (!chip.packageWatts)
        return std::nullopt;
    const double gpu = gpusAreOnPackage(machine) ? countedGPUWatts(sample).value_or(0) : 0;
    const double told = knownCPUWatts(sample).value_or(0) + gpu + npuWatts(chip).value_or(0);
    return std::max(*chip.packageWatts - told, 0.0);
}

/// Of a sample with a reading.
std::optional<double> wattsOf(PowerSource source, const SystemMetrics &sample,
                              const MachineCoverage &machine)
{
    switch (source) {
    case PowerSource::cpu:
        return knownCPUWatts(sample);
    case PowerSource::gpu:
        return countedGPUWatts(sample);
    case PowerSource::ane:
        return npuWatts(*sample.chip);
    case PowerSource::rest:
        return restWatts(sample, machine);
    case PowerSource::package:
        break;
    }
    return sample.chip->packageWatts;
}

std::vector<PowerValue> valuesOfWhole(const std::optional<ChipReading> &chip)
{
    static const ChipReading none;
    const ChipReading &from = chip ? *chip : none;
    return {{from.cpuWatts, from.denied.cpuWatts},
            {from.gpuWatts, from.denied.gpuWatts},
            {from.aneWatts, from.denied.aneWatts}};
}

} // namespace

std::vector<PowerPart> powerParts(const MachineCoverage &machine)
{
    const PowerPart cpu = part(PowerSource::cpu, u"CPU"_s, Theme::cpu);
    const PowerPart gpu = part(PowerSource::gpu, u"GPU"_s, Theme::gpu);
    if (machine.isWhole)
        return {cpu, gpu, part(PowerSource::ane, u"ANE"_s, Theme::ane)};

    const Coverage gpuCoverage = gpuWattsCoverage(countedGPUs(machine));
    const bool gpuIsKnown = gpuCoverage == Coverage::known;
    const bool cpuIsKnown = machine.cpuWatts == Coverage::known;
    const bool packageIsKnown = machine.packageWatts == Coverage::known;
    const bool tellsParts = cpuIsKnown || (gpuIsKnown && gpusAreOnPackage(machine));
    std::vector<PowerPart> parts;
    if (cpuIsKnown)
        parts.push_back(cpu);
    if (packageIsKnown && !tellsParts)
        parts.push_back(part(PowerSource::package, u"Package"_s, Theme::cpu));
    if (gpuIsKnown)
        parts.push_back(gpu);
    if (machine.npuWatts == Coverage::known)
        parts.push_back(part(PowerSource::ane, u"NPU"_s, Theme::ane));
    if (packageIsKnown && tellsParts)
        parts.push_back({PowerSource::rest, u"Rest"_s, Theme::white(0.55F), Theme::white(0.22F)});
    if (isDenied(gpuCoverage) && gpuCoverage != Coverage::unpublished)
        parts.push_back(part(PowerSource::gpu, u"GPU"_s, Theme::gpu, gpuCoverage));
    if (machine.cpuWatts == Coverage::locked && !packageIsKnown)
        parts.push_back(part(PowerSource::cpu, u"CPU"_s, Theme::cpu, Coverage::locked));
    return parts;
}

std::vector<PowerValue> powerValues(const std::vector<PowerPart> &parts,
                                    const SystemMetrics &sample, const MachineCoverage &machine)
{
    if (machine.isWhole)
        return valuesOfWhole(sample.chip);
    std::vector<PowerValue> values(parts.size());
    for (std::size_t i = 0; sample.chip && i < parts.size(); ++i)
        values[i].watts = wattsOf(parts[i].source, sample, machine);
    return values;
}

std::optional<double> totalWatts(const std::vector<PowerValue> &values)
{
    std::optional<double> total;
    for (const PowerValue &value : values) {
        if (value.isDenied)
            return std::nullopt;
        if (value.watts)
            total = total.value_or(0) + *value.watts;
    }
    return total;
}

QString powerSumText(const std::vector<PowerPart> &parts, const std::vector<PowerValue> &values,
                     const MachineCoverage &machine)
{
    const auto holds = [&](PowerSource source) {
        const auto found = std::ranges::find(parts, source, &PowerPart::source);
        return found != parts.end()
            && values[static_cast<std::size_t>(found - parts.begin())].watts.has_value();
    };
    const QString gpus =
        std::ranges::count_if(countedGPUs(machine), tellsWatts) > 1 ? u"GPUs"_s : u"GPU"_s;
    const bool gpu = holds(PowerSource::gpu);
    if (holds(PowerSource::rest) || holds(PowerSource::package)) {
        return gpu && !gpusAreOnPackage(machine) ? u"package and "_s + gpus : u"whole package"_s;
    }
    if (holds(PowerSource::cpu))
        return gpu ? u"CPU and "_s + gpus : u"CPU only"_s;
    if (gpu)
        return gpus + u" only"_s;
    return holds(PowerSource::ane) ? u"NPU only"_s : u"nothing to read"_s;
}

QString systemWattsText(double watts, const QString &source)
{
    const QString text = u"System "_s + wattsText(watts, 2);
    return source.isEmpty() ? text : text + u" · "_s + source;
}

void paintPowerDot(QPainter &painter, const QRectF &dot, const PowerPart &part)
{
    constexpr double line = 1.2;
    if (part.coverage == Coverage::known) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(part.color);
        painter.drawEllipse(dot);
        return;
    }
    painter.setPen(QPen(part.color, line));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(dot.adjusted(line / 2, line / 2, -line / 2, -line / 2));
}

} // namespace corvane
