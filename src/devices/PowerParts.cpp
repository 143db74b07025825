#include "devices/PowerParts.h"

#include "records/MachineParts.h"
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

/// A part of a machine that is no whole chip.
PowerPart knownPart(PowerSource source)
{
    switch (source) {
    case PowerSource::cpu:
        return part(source, u"CPU"_s, Theme::cpu);
    case PowerSource::gpu:
        return part(source, u"GPU"_s, Theme::gpu);
    case PowerSource::ane:
        return part(source, u"NPU"_s, Theme::ane);
    case PowerSource::rest:
        return {source, u"Rest"_s, Theme::white(0.55F), Theme::white(0.22F)};
    case PowerSource::package:
        break;
    }
    return part(source, u"Package"_s, Theme::cpu);
}

std::vector<PowerValue> valuesOfWhole(const std::optional<ChipReading> &chip)
{
    static const ChipReading none;
    const ChipReading &from = chip ? *chip : none;
    const DeniedParts &denied = from.denied;
    return {{unlessDenied(from.cpuWatts, denied.cpuWatts), denied.cpuWatts},
            {unlessDenied(from.gpuWatts, denied.gpuWatts), denied.gpuWatts},
            {unlessDenied(from.aneWatts, denied.aneWatts), denied.aneWatts}};
}

} // namespace

std::vector<PowerPart> powerParts(const MachineCoverage &machine)
{
    if (machine.isWhole)
        return {knownPart(PowerSource::cpu), knownPart(PowerSource::gpu),
                part(PowerSource::ane, u"ANE"_s, Theme::ane)};

    std::vector<PowerPart> parts;
    for (const PowerSource source : powerSources(machine))
        parts.push_back(knownPart(source));
    const Coverage gpuCoverage = gpuWattsCoverage(machine);
    if (isDenied(gpuCoverage) && gpuCoverage != Coverage::unpublished)
        parts.push_back(part(PowerSource::gpu, u"GPU"_s, Theme::gpu, gpuCoverage));
    if (machine.cpuWatts == Coverage::locked && machine.packageWatts != Coverage::known)
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
    const bool npu = holds(PowerSource::ane) && !machine.isWhole;
    if (holds(PowerSource::cpu))
        return gpu ? u"CPU and "_s + gpus : u"CPU only"_s;
    if (gpu)
        return gpus + (npu ? u" and NPU"_s : u" only"_s);
    return npu ? u"NPU only"_s : u"nothing to read"_s;
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
