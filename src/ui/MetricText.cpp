#include "ui/MetricText.h"

#include "ui/ByteFormatter.h"
#include "ui/MachineText.h"
#include "ui/NumberText.h"
#include "ui/RoomText.h"
#include "ui/Theme.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <iterator>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

QString byteText(quint64 bytes)
{
    return ByteFormatter::f().string(bytes);
}

/// A percentage rounded towards zero. Plausible samples lie in 0…100; any other is limited to what
/// an integer holds.
qint64 wholePercent(double percent)
{
    constexpr double most = 1e15;
    return std::isnan(percent) ? 0 : static_cast<qint64>(std::clamp(percent, -most, most));
}

QStringList textsOf(const LabelNumbers &numbers, QString LabelNumber::*text)
{
    QStringList texts;
    for (const LabelNumber &number : numbers)
        texts.append(number.*text);
    return texts;
}

/// 0 stands for a frequency that is not known.
std::optional<double> knownFrequency(const MachineCoverage &coverage, double megahertz)
{
    const bool isKnown = coverage.cpuFrequency == Coverage::known && megahertz > 0;
    return isKnown ? std::optional(megahertz) : std::nullopt;
}

} // namespace

MetricValues::MetricValues(const SystemMetrics &current)
    : memory(current.memory),
      room(modelRoom(current))
{
    static const ChipReading none = {};
    const ChipReading &chip = current.chip ? *current.chip : none;
    const MachineCoverage &coverage = coverageOf(current);
    isWhole = coverage.isWhole;
    cpuPercent = unlessDenied(chip.cpuActiveFraction * 100, chip.denied.cpuLoad);
    if (isWhole) {
        cpuWatts = unlessDenied(chip.cpuWatts, chip.denied.cpuWatts);
        gpuPercent = unlessDenied(chip.gpuActiveFraction * 100, chip.denied.gpuLoad);
        gpuWatts = unlessDenied(chip.gpuWatts, chip.denied.gpuWatts);
        aneWatts = unlessDenied(chip.aneWatts, chip.denied.aneWatts);
        totalWatts = shownTotalWatts(current.chip);
        return;
    }
    cpuWatts = corvane::cpuWatts(current);
    gpuMemory = gpuMemoryTotal(current);
    gpuLoad = gpuLoadTotal(current);
    power = powerTotal(current);
    cpuWattsAreLocked = coverage.cpuWatts == Coverage::locked;
    cpuMHz = knownFrequency(coverage, chip.cpuActiveMHz);
    cpuFrequencyIsNominal = coverage.cpuFrequencyIsNominal;
    cpuTempC = chip.cpuTempC ? chip.cpuTempC : chip.packageTempC;
    hasNPU = coverage.npuLoad != Coverage::absent;
    npu = chip.npu;
}

std::vector<MetricRow> metricRows(const MetricValues &values)
{
    const MemorySnapshot &memory = values.memory;
    MetricRow first{u"Memory"_s, Theme::memory,
                    byteText(memory.used) + u" / "_s + byteText(memory.total),
                    spacedPercentText(usedPercent(memory))};
    MetricRow last{u"Swap"_s, Theme::withOpacity(Theme::memory, 0.7), byteText(memory.swapUsed),
                   u"of "_s + byteText(memory.swapTotal)};
    if (values.isWhole) {
        if (values.room)
            first.explanation = roomText(*values.room) + u'\n' + roomReckoning(*values.room);
        return {
            first,
            {u"GPU"_s, Theme::gpu, spacedPercentText(values.gpuPercent),
             wattsText(values.gpuWatts, 2)},
            {u"CPU"_s, Theme::cpu, spacedPercentText(values.cpuPercent),
             wattsText(values.cpuWatts, 2)},
            {u"ANE"_s, Theme::ane, wattsText(values.aneWatts, 2), u"Neural Engine"_s},
            last,
        };
    }
    if (memory.swapTotal == 0) {
        last.value = u"off"_s;
        last.detail.clear();
    }
    std::vector<MetricRow> rows = unitRows(values);
    rows.insert(rows.begin(), first);
    rows.push_back(last);
    return rows;
}

QString inOneLine(const MetricRow &row)
{
    if (row.detail.isEmpty())
        return u"%1: %2"_s.arg(row.title, row.value);
    return u"%1: %2, %3"_s.arg(row.title, row.value, row.detail);
}

PowerText powerText(const MetricValues &values)
{
    if (values.isWhole)
        return {wattsText(values.totalWatts, 1), Theme::power};
    return machinePowerText(values.power);
}

QString labelName(LabelKind kind)
{
    switch (kind) {
    case LabelKind::memory:
        return u"Memory"_s;
    case LabelKind::vram:
        return u"VRAM"_s;
    case LabelKind::gpu:
        return u"GPU"_s;
    case LabelKind::power:
        return u"Power"_s;
    case LabelKind::cpu:
        break;
    }
    return u"CPU"_s;
}

LabelNumber loadNumber(LabelKind kind, std::optional<double> percent, const QColor &color)
{
    const QString name = labelName(kind);
    if (!percent)
        return {kind, percentText(percent), color, name + u' ' + percentText(percent)};
    const QString text = QString::number(wholePercent(*percent));
    return {kind, text, color, u"%1 %2 %"_s.arg(name, text)};
}

LabelNumbers labelNumbers(const MetricValues &values)
{
    LabelNumbers numbers{loadNumber(LabelKind::memory, usedPercent(values.memory), Theme::memory)};
    if (!values.isWhole) {
        std::ranges::move(unitNumbers(values), std::back_inserter(numbers));
        return numbers;
    }
    numbers.push_back(loadNumber(LabelKind::gpu, values.gpuPercent, Theme::gpu));
    numbers.push_back({LabelKind::power, tightWattsText(values.totalWatts, 0), Theme::power,
                       u"Power "_s + wattsText(values.totalWatts, 0)});
    return numbers;
}

QString inOneLine(const LabelNumbers &numbers)
{
    return textsOf(numbers, &LabelNumber::text).join(u' ');
}

QString inWords(const LabelNumbers &numbers)
{
    return textsOf(numbers, &LabelNumber::words).join(u", "_s);
}

} // namespace corvane
