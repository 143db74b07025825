#include "ui/MachineText.h"

#include "ui/ByteFormatter.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <QStringList>

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// Of the colour of a number that stands for no value.
constexpr double dimmed = 0.65;

constexpr QLatin1StringView between = " \xB7 "_L1;

QString dash()
{
    return u"\u2013"_s;
}

QString byteText(quint64 bytes)
{
    return ByteFormatter::f().string(bytes);
}

QString joined(QStringList texts)
{
    texts.removeAll(QString());
    return texts.join(between);
}

/// The detail below a value that is not known.
QString absenceText(FigureState state, Coverage reason)
{
    return state == FigureState::asleep ? u"left asleep"_s : reasonText(reason);
}

QString absentValue(FigureState state)
{
    return state == FigureState::asleep ? u"asleep"_s : dash();
}

/// Stands before a figure that may be too low.
QString leastText(const GPUMemoryTotal &memory)
{
    return memory.isLowerBound ? u"\u2265 "_s : QString();
}

MetricRow memoryRow(const GPUMemoryTotal &memory)
{
    MetricRow row{memory.ofCards ? u"VRAM"_s : u"GPU Memory"_s, Theme::gpu,
                  absentValue(memory.state)};
    const QString total = memory.total > 0 ? byteText(memory.total) : QString();
    if (memory.state != FigureState::known) {
        row.detail = absenceText(memory.state, memory.reason);
        if (memory.state == FigureState::asleep && !total.isEmpty())
            row.detail = total;
        else if (!total.isEmpty())
            row.value += u" / "_s + total;
        return row;
    }
    const QString least = leastText(memory);
    row.value = least + byteText(memory.used);
    if (!total.isEmpty()) {
        row.value += u" / "_s + total;
        row.detail = least + spacedPercentText(usedPercent(memory));
    }
    if (memory.sleeping > 0)
        row.detail = joined({row.detail, u"%1 asleep"_s.arg(memory.sleeping)});
    return row;
}

QString shareText(const GPULoadShare &share)
{
    switch (share.state) {
    case FigureState::known:
        return fixedText(share.fraction * 100, 0);
    case FigureState::asleep:
        return u"zz"_s;
    case FigureState::absent:
    case FigureState::unreadable:
        break;
    }
    return dash();
}

/// "94 · 93 · 61 · 0 %"; of more GPUs than a line can name the lowest and the highest load.
QString sharesText(const std::vector<GPULoadShare> &shares)
{
    constexpr std::size_t most = 8;
    if (shares.size() <= most) {
        QStringList texts;
        for (const GPULoadShare &share : shares)
            texts.append(shareText(share));
        return texts.join(between) + u" %"_s;
    }
    std::vector<double> known;
    for (const GPULoadShare &share : shares) {
        if (share.state == FigureState::known)
            known.push_back(share.fraction * 100);
    }
    const auto [least, greatest] = std::ranges::minmax(known);
    return u"%1 GPUs: %2 to %3 %"_s.arg(QString::number(shares.size()), fixedText(least, 0),
                                        fixedText(greatest, 0));
}

QString clockText(std::optional<double> megahertz)
{
    return megahertz ? gigahertzText(*megahertz) : QString();
}

QString loadDetail(const GPULoadTotal &load)
{
    if (load.state != FigureState::known)
        return absenceText(load.state, load.reason);
    if (load.shares.size() > 1)
        return sharesText(load.shares);
    if (load.isStandIn)
        return joined({clockText(load.megahertz), u"integrated"_s});
    return load.watts ? wattsText(load.watts, 2) : clockText(load.megahertz);
}

MetricRow loadRow(const GPULoadTotal &load)
{
    const bool isKnown = load.state == FigureState::known;
    return {u"GPU"_s, Theme::gpu,
            isKnown ? spacedPercentText(load.fraction * 100) : absentValue(load.state),
            loadDetail(load)};
}

QString temperatureText(std::optional<double> celsius)
{
    return celsius ? fixedText(*celsius, 0) + u" \u00B0C"_s : QString();
}

/// Where no other part tells its watts either, the lock is named here; else the panel's header says
/// what its sum is of.
QString cpuDetail(const MetricValues &values)
{
    if (values.cpuWatts)
        return wattsText(values.cpuWatts, 2);
    if (values.cpuWattsAreLocked && values.power.state == FigureState::absent)
        return joined({u"watts locked"_s, temperatureText(values.cpuTempC)});
    if (!values.cpuMHz)
        return temperatureText(values.cpuTempC);
    return frequencyText(*values.cpuMHz)
        + (values.cpuFrequencyIsNominal ? u" nominal"_s : QString());
}

MetricRow npuRow(const MetricValues &values)
{
    const NPUMetrics npu = values.npu.value_or(NPUMetrics{});
    const auto percent =
        npu.activeFraction ? std::optional(*npu.activeFraction * 100) : std::nullopt;
    const QString told = npu.watts ? wattsText(npu.watts, 2) : clockText(npu.megahertz);
    return {u"NPU"_s, Theme::ane, spacedPercentText(percent),
            percent ? told : joined({u"load not published"_s, told})};
}

/// A number without a value: "zz" or "–".
LabelNumber absentNumber(LabelKind kind, const QColor &color, FigureState state, Coverage reason)
{
    const bool isAsleep = state == FigureState::asleep;
    const QString why = reasonText(reason);
    const QString words = isAsleep ? u" asleep"_s : why.isEmpty() ? u' ' + dash() : u": "_s + why;
    return {kind, isAsleep ? u"zz"_s : dash(), Theme::withOpacity(color, dimmed),
            labelName(kind) + words};
}

LabelNumber memoryNumber(const GPUMemoryTotal &memory)
{
    const auto percent = usedPercent(memory);
    if (!percent) {
        LabelNumber none = absentNumber(LabelKind::vram, Theme::gpu, memory.state, memory.reason);
        if (memory.state == FigureState::known) // Without the card's total.
            none.words = u"VRAM "_s + leastText(memory) + byteText(memory.used);
        return none;
    }
    LabelNumber number = loadNumber(LabelKind::vram, percent, Theme::gpu);
    if (memory.isLowerBound) {
        number.words = u"VRAM at least %1 %"_s.arg(number.text);
        number.text.prepend(u'\u2265');
    }
    return number;
}

LabelNumber gpuNumber(const GPULoadTotal &load)
{
    if (load.state != FigureState::known)
        return absentNumber(LabelKind::gpu, Theme::gpu, load.state, load.reason);
    LabelNumber number = loadNumber(LabelKind::gpu, load.fraction * 100, Theme::gpu);
    if (load.isStandIn)
        number.words = u"Integrated "_s + number.words;
    return number;
}

QString powerName(PowerParts parts)
{
    switch (parts) {
    case PowerParts::cpuOnly:
        return u"CPU power"_s;
    case PowerParts::gpuOnly:
    case PowerParts::gpusOnly:
        return u"GPU power"_s;
    case PowerParts::notAllGPUs:
        return u"Power without some GPUs"_s;
    case PowerParts::npuOnly:
        return u"NPU power"_s;
    case PowerParts::gpuAndNPU:
    case PowerParts::gpusAndNPU:
        return u"GPU and NPU power"_s;
    case PowerParts::all:
        break;
    }
    return u"Power"_s;
}

LabelNumber powerNumber(const PowerTotal &power)
{
    if (power.state != FigureState::known)
        return {LabelKind::power, dash(), Theme::withOpacity(Theme::power, dimmed),
                u"Power "_s + dash()};
    return {LabelKind::power, tightWattsText(power.watts, 0), Theme::power,
            powerName(power.parts) + u' ' + wattsText(power.watts, 0)};
}

/// What a sum of watts contains; empty for all parts.
QString partsText(PowerParts parts)
{
    switch (parts) {
    case PowerParts::cpuOnly:
        return u"CPU only"_s;
    case PowerParts::gpuOnly:
        return u"GPU only"_s;
    case PowerParts::gpusOnly:
        return u"GPUs only"_s;
    case PowerParts::notAllGPUs:
        return u"not all GPUs"_s;
    case PowerParts::npuOnly:
        return u"NPU only"_s;
    case PowerParts::gpuAndNPU:
        return u"GPU and NPU"_s;
    case PowerParts::gpusAndNPU:
        return u"GPUs and NPU"_s;
    case PowerParts::all:
        break;
    }
    return {};
}

} // namespace

std::vector<MetricRow> unitRows(const MetricValues &values)
{
    std::vector<MetricRow> rows;
    if (values.gpuMemory.state != FigureState::absent)
        rows.push_back(memoryRow(values.gpuMemory));
    if (values.gpuLoad.state != FigureState::absent)
        rows.push_back(loadRow(values.gpuLoad));
    rows.push_back({u"CPU"_s, Theme::cpu, spacedPercentText(values.cpuPercent), cpuDetail(values)});
    if (values.hasNPU)
        rows.push_back(npuRow(values));
    return rows;
}

LabelNumbers unitNumbers(const MetricValues &values)
{
    LabelNumbers numbers;
    if (values.gpuMemory.ofCards && values.gpuMemory.state != FigureState::absent)
        numbers.push_back(memoryNumber(values.gpuMemory));
    if (values.gpuLoad.state != FigureState::absent)
        numbers.push_back(gpuNumber(values.gpuLoad));
    numbers.push_back(values.power.state == FigureState::absent
                          ? loadNumber(LabelKind::cpu, values.cpuPercent, Theme::cpu)
                          : powerNumber(values.power));
    return numbers;
}

PowerText machinePowerText(const PowerTotal &power)
{
    if (power.state == FigureState::absent)
        return {};
    if (power.state != FigureState::known)
        return {dash(), Theme::withOpacity(Theme::power, dimmed), u"nothing to read"_s};
    return {wattsText(power.watts, 1), Theme::power, partsText(power.parts)};
}

QString reasonText(Coverage coverage)
{
    switch (coverage) {
    case Coverage::asleep:
        return u"asleep"_s;
    case Coverage::locked:
        return u"locked"_s;
    case Coverage::unpublished:
        return u"not published"_s;
    case Coverage::noLibrary:
        return u"driver library missing"_s;
    case Coverage::newDriver:
        return u"restart needed"_s;
    case Coverage::absent:
    case Coverage::known:
        break;
    }
    return {};
}

} // namespace corvane
