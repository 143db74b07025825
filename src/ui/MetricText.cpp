#include "ui/MetricText.h"

#include "ui/ByteFormatter.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <algorithm>
#include <cmath>

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

LabelNumber loadNumber(const QString &name, std::optional<double> percent, const QColor &color)
{
    if (!percent)
        return {percentText(percent), color, name + u' ' + percentText(percent)};
    const QString text = QString::number(wholePercent(*percent));
    return {text, color, u"%1 %2 %"_s.arg(name, text)};
}

} // namespace

MetricValues::MetricValues(const SystemMetrics &current) : memory(current.memory)
{
    const ChipReading none = {};
    const ChipReading &chip = current.chip ? *current.chip : none;
    gpuPercent = unlessDenied(chip.gpuActiveFraction * 100, chip.denied.gpuLoad);
    gpuWatts = unlessDenied(chip.gpuWatts, chip.denied.gpuWatts);
    cpuPercent = unlessDenied(chip.cpuActiveFraction * 100, chip.denied.cpuLoad);
    cpuWatts = unlessDenied(chip.cpuWatts, chip.denied.cpuWatts);
    aneWatts = unlessDenied(chip.aneWatts, chip.denied.aneWatts);
    totalWatts = shownTotalWatts(current.chip);
}

std::array<MetricRow, 5> metricRows(const MetricValues &values)
{
    const MemorySnapshot &memory = values.memory;
    return {{
        {u"Memory"_s, Theme::memory, byteText(memory.used) + u" / "_s + byteText(memory.total),
         spacedPercentText(usedPercent(memory))},
        {u"GPU"_s, Theme::gpu, spacedPercentText(values.gpuPercent), wattsText(values.gpuWatts, 2)},
        {u"CPU"_s, Theme::cpu, spacedPercentText(values.cpuPercent), wattsText(values.cpuWatts, 2)},
        {u"ANE"_s, Theme::ane, wattsText(values.aneWatts, 2), u"Neural Engine"_s},
        {u"Swap"_s, Theme::withOpacity(Theme::memory, 0.7), byteText(memory.swapUsed),
         u"of "_s + byteText(memory.swapTotal)},
    }};
}

QString inOneLine(const MetricRow &row)
{
    return u"%1: %2, %3"_s.arg(row.title, row.value, row.detail);
}

LabelNumbers labelNumbers(const MetricValues &values)
{
    return {
        loadNumber(u"Memory"_s, usedPercent(values.memory), Theme::memory),
        loadNumber(u"GPU"_s, values.gpuPercent, Theme::gpu),
        LabelNumber{tightWattsText(values.totalWatts, 0), Theme::power,
                    u"Power "_s + wattsText(values.totalWatts, 0)},
    };
}

QString inOneLine(const LabelNumbers &numbers)
{
    return u"%1 %2 %3"_s.arg(numbers[0].text, numbers[1].text, numbers[2].text);
}

QString inWords(const LabelNumbers &numbers)
{
    return u"%1, %2, %3"_s.arg(numbers[0].words, numbers[1].words, numbers[2].words);
}

} // namespace corvane
