#include "cards/MemoryCard.h"

#include "cards/HistoryChart.h"
#include "cards/InfoTexts.h"
#include "cards/MeansChart.h"
#include "cards/MemoryBreakdown.h"
#include "charts/HoverTime.h"
#include "charts/Sparkline.h"
#include "ui/ByteFormatter.h"
#include "ui/CardStyle.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <QPainter>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr double badgeDotSize = 6;
constexpr double badgeGap = 5;

QString pressureText(MemoryPressure pressure)
{
    switch (pressure) {
    case MemoryPressure::warning:
        return u"WARNING"_s;
    case MemoryPressure::critical:
        return u"CRITICAL"_s;
    case MemoryPressure::normal:
        break;
    }
    return u"NORMAL"_s;
}

const QColor &pressureColor(MemoryPressure pressure)
{
    switch (pressure) {
    case MemoryPressure::warning:
        return Theme::gpu;
    case MemoryPressure::critical:
        return Theme::critical;
    case MemoryPressure::normal:
        break;
    }
    return Theme::memory;
}

QString swapText(const MemorySnapshot &memory)
{
    if (memory.swapTotal == 0)
        return u"off"_s;
    const ByteFormatter &bytes = ByteFormatter::f();
    return bytes.string(memory.swapUsed) + u" / "_s + bytes.string(memory.swapTotal);
}

} // namespace

MemoryCard::MemoryCard(QWidget *parent)
    : CapacityCard({u"memorychip"_s, u"Unified Memory"_s, Theme::memory},
                   infoText(InfoTopic::memory), u"Memory used in percent"_s, parent),
      m_badge(addText({.name = u"Memory pressure"_s,
                       .font = Theme::systemFont(10, QFont::DemiBold),
                       .alignment = Qt::AlignRight}))
{
    m_badge.font.setLetterSpacing(QFont::AbsoluteSpacing, 0.3);
    chart()->setAccessibleName(u"Memory used over time"_s);
    chart()->setHoverPill([this](std::size_t index) { return pill(index); });
}

void MemoryCard::show(const SystemMetrics &current, const ChartHistory &history)
{
    const MachineCoverage &machine = coverageOf(current);
    setTitle(machine.isWhole ? u"Unified Memory"_s : u"Memory"_s);
    setInfo(infoText(InfoTopic::memory, machine));
    showPressure(current.memory.pressure);
    showFigures(current.memory);
    const ByteFormatter &bytes = ByteFormatter::f();
    showAmounts(machine.isWhole ? QString() : bytes.string(current.memory.used),
                machine.isWhole ? QString() : bytes.string(current.memory.total));
    showHistory(history);
}

void MemoryCard::showHistory(const ChartHistory &history)
{
    if (history.means) {
        showMeans(*history.means, Measure::memory);
        return;
    }
    std::vector<std::optional<double>> percents;
    percents.reserve(history.recent.size());
    for (const SystemMetrics &sample : history.recent)
        percents.emplace_back(usedPercent(sample.memory));
    showChart(historyChart(history.recent), std::move(percents));
}

void MemoryCard::showPressure(MemoryPressure pressure)
{
    const QRectF previousDot = badgeDot();
    const QColor previousColor = m_badge.color;
    setText(m_badge, pressureText(pressure), pressureColor(pressure));
    if (m_badge.color != previousColor)
        updateShape(previousDot, badgeDot());
}

void MemoryCard::showFigures(const MemorySnapshot &memory)
{
    showFigure(usedPercent(memory));
    const ByteFormatter &bytes = ByteFormatter::f();
    showChips(
        {{u"App"_s, Theme::white(0.85), bytes.string(memory.appMemory)},
         {u"Wired"_s, Theme::withOpacity(Theme::memory, 0.9), bytes.string(memory.wired)},
         {u"Compressed"_s, Theme::withOpacity(Theme::cpu, 0.9), bytes.string(memory.compressed)},
         {u"Cached"_s, Theme::textTertiary, bytes.string(memory.cached)}});
    showLine(u"Swap"_s, swapText(memory));
    const auto segments = breakdownSegments(memory);
    showSegments({segments.begin(), segments.end()});
}

PillContent MemoryCard::pill(std::size_t index) const
{
    const SparklineData &shown = chart()->shown();
    if (shown.showsMeans)
        return loadPill(shown, index, Theme::memory);
    return {HoverTime::string(shown.timestamps[index]),
            {valuesRow({percentText(shown.series.front().values[index])}, Theme::memory)}};
}

void MemoryCard::layOut()
{
    const TextLine header{CardStyle::padding, headerHeight};
    m_badge.baseline = {headerStatEnd().x(), header.baseline(m_badge.font)};
    CapacityCard::layOut();
}

QRectF MemoryCard::badgeDot() const
{
    const double left = m_badge.baseline.x() - m_badge.width() - badgeGap - badgeDotSize;
    const double top = CardStyle::padding + (headerHeight - badgeDotSize) / 2;
    return {left, top, badgeDotSize, badgeDotSize};
}

void MemoryCard::paintShapes(QPainter &painter, const QRectF &dirty)
{
    if (!m_badge.text.isEmpty() && badgeDot().intersects(dirty)) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(m_badge.color);
        painter.drawEllipse(badgeDot());
    }
    CapacityCard::paintShapes(painter, dirty);
}

} // namespace corvane
