#include "cards/MemoryCard.h"

#include "cards/HistoryChart.h"
#include "cards/InfoTexts.h"
#include "charts/HoverTime.h"
#include "charts/Sparkline.h"
#include "ui/ByteFormatter.h"
#include "ui/CardStyle.h"
#include "ui/NumberText.h"
#include "ui/PixelGrid.h"
#include "ui/RoundedBox.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr double badgeDotSize = 6;
constexpr double badgeGap = 5;
constexpr TextLine figureLine{45.5, 36};
constexpr double figureShift = -1; ///< Aligns the ink, not the side bearing, with the left edge.
constexpr double percentGap = 3;
constexpr double barTop = 94;
constexpr double barHeight = 10;
constexpr TextLine chipLine{115.75, 14}; ///< A rounded top would shift the text at scale 2.
constexpr double chipDotTop = 120;
constexpr double chipDotSize = 6;
constexpr double chipGap = 4; ///< Dot to label and label to value.
constexpr TextLine swapLine{141.5, 14};
constexpr double swapGap = 6;
constexpr int chartTop = 168;

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

double chipSpacing(double rowWidth, double chipsWidth)
{
    return std::clamp(std::floor((rowWidth - chipsWidth) / 3), 8.0, 18.0);
}

MemoryCard::MemoryCard(QWidget *parent)
    : Card({u"memorychip"_s, u"Unified Memory"_s, Theme::memory}, infoText(InfoTopic::memory),
           parent),
      m_badge(addText({.name = u"Memory pressure"_s,
                       .font = Theme::systemFont(10, QFont::DemiBold),
                       .alignment = Qt::AlignRight})),
      m_figure(addText({.name = u"Memory used in percent"_s,
                        .font = Theme::systemFont(44, QFont::DemiBold),
                        .color = Theme::textPrimary,
                        .digits = Digits::proportional})),
      m_percentSign(addText({.text = u"%"_s,
                             .font = Theme::systemFont(22, QFont::Medium),
                             .color = Theme::textSecondary,
                             .isCaption = true})),
      m_chips{addChip(u"App"_s, Theme::white(0.85)),
              addChip(u"Wired"_s, Theme::withOpacity(Theme::memory, 0.9)),
              addChip(u"Compressed"_s, Theme::withOpacity(Theme::cpu, 0.9)),
              addChip(u"Cached"_s, Theme::textTertiary)},
      m_swapLabel(addText({.text = u"Swap"_s,
                           .font = Theme::systemFont(11),
                           .color = Theme::textTertiary,
                           .isCaption = true})),
      m_swap(addText(
          {.name = u"Swap"_s, .font = Theme::systemFont(11), .color = Theme::textSecondary})),
      m_chart(new Sparkline(this)),
      m_segments(breakdownSegments({}))
{
    m_badge.font.setLetterSpacing(QFont::AbsoluteSpacing, 0.3);
    m_figure.font.setLetterSpacing(QFont::AbsoluteSpacing, -1);
    m_chart->setAccessibleName(u"Memory used over time"_s);
    m_chart->setHoverPill([this](std::size_t index) { return pill(index); });
}

MemoryCard::Chip MemoryCard::addChip(const QString &label, const QColor &color)
{
    CardText &caption = addText({.text = label,
                                 .font = Theme::systemFont(10),
                                 .color = Theme::textSecondary,
                                 .isCaption = true});
    CardText &value = addText({.name = label,
                               .font = Theme::systemFont(10, QFont::DemiBold),
                               .color = Theme::textPrimary});
    return {color, &caption, &value, label};
}

void MemoryCard::show(const SystemMetrics &current, const std::vector<SystemMetrics> &history)
{
    showFigures(current.memory);
    showChart(history);
}

void MemoryCard::showFigures(const MemorySnapshot &memory)
{
    const QRectF previousDot = badgeDot();
    const QColor previousColor = m_badge.color;
    setText(m_badge, pressureText(memory.pressure), pressureColor(memory.pressure));
    if (m_badge.color != previousColor)
        updateShape(previousDot, badgeDot());

    setText(m_figure, fixedText(usedPercent(memory), 0));
    placeFigure();
    setText(m_swap, swapText(memory));

    const ByteFormatter &bytes = ByteFormatter::f();
    const std::array<std::uint64_t, 4> counts{memory.appMemory, memory.wired, memory.compressed,
                                              memory.cached};
    for (std::size_t i = 0; i < m_chips.size(); ++i)
        setText(*m_chips[i].value, bytes.string(counts[i]));
    placeChips();

    const std::array<MemorySegment, 4> segments = breakdownSegments(memory);
    if (segments != m_segments)
        update(breakdownBar().toAlignedRect());
    m_segments = segments;
}

void MemoryCard::showChart(const std::vector<SystemMetrics> &history)
{
    SparklineData chart = historyChart(history);
    SparklineSeries series{.lineColor = Theme::memory,
                           .lineWidth = 2,
                           .fillColors = {Theme::withOpacity(Theme::memory, 0.55),
                                          Theme::withOpacity(Theme::memory, 0.05)}};
    series.values.reserve(history.size());
    for (const SystemMetrics &sample : history)
        series.values.push_back(usedPercent(sample.memory));
    chart.series.push_back(std::move(series));
    chart.yDomain = {0, 100};
    m_chart->show(std::move(chart));
}

PillContent MemoryCard::pill(std::size_t index) const
{
    const SparklineData &chart = m_chart->shown();
    return {HoverTime::string(chart.timestamps[index]),
            {valuesRow({percentText(chart.series.front().values[index])}, Theme::memory)}};
}

void MemoryCard::layOut()
{
    const TextLine header{CardStyle::padding, headerHeight};
    m_badge.baseline = {headerStatEnd().x(), header.baseline(m_badge.font)};
    m_figure.baseline = {contentLeft() + figureShift, figureLine.baseline(m_figure.font)};
    placeFigure();
    placeChips();
    const double swapBaseline = swapLine.baseline(m_swap.font);
    m_swapLabel.baseline = {contentLeft(), swapBaseline};
    m_swap.baseline = {contentLeft() + m_swapLabel.width() + swapGap, swapBaseline};
    m_swap.maxWidth = contentRight() - m_swap.baseline.x();
    m_chart->setGeometry(CardStyle::padding, chartTop, width() - 2 * CardStyle::padding,
                         height() - CardStyle::padding - chartTop);
}

void MemoryCard::placeFigure()
{
    moveText(m_percentSign,
             {m_figure.baseline.x() + m_figure.width() + percentGap, m_figure.baseline.y()});
}

void MemoryCard::placeChips()
{
    constexpr double minSpacing = 8;
    const double rowWidth = contentRight() - contentLeft();
    const auto labelWidth = [](const Chip &chip) {
        return textWidth(chip.fullLabel, chip.label->font);
    };
    double chipsWidth = 0;
    for (const Chip &chip : m_chips)
        chipsWidth += chipDotSize + 2 * chipGap + labelWidth(chip) + chip.value->width();
    const double spacing = chipSpacing(rowWidth, chipsWidth);

    // Where even the minimum spacing is too wide, labels are elided, the rightmost first.
    double missing = std::max(chipsWidth + 3 * minSpacing - rowWidth, 0.0);
    std::array<double, 4> most = {};
    for (std::size_t i = m_chips.size(); i-- > 0;) {
        const double whole = labelWidth(m_chips[i]);
        const double least = textWidth(u"…"_s, m_chips[i].label->font);
        most[i] = std::max(whole - missing, std::min(least, whole));
        missing -= whole - most[i];
    }

    double x = contentLeft();
    const double baseline = chipLine.baseline(m_chips[0].label->font);
    for (std::size_t i = 0; i < m_chips.size(); ++i) {
        Chip &chip = m_chips[i];
        chip.label->maxWidth = most[i] < labelWidth(chip) ? most[i] : 0;
        const QRectF dotBefore = chipDot(chip);
        moveText(*chip.label, {x + chipDotSize + chipGap, baseline});
        if (chipDot(chip) != dotBefore)
            updateShape(dotBefore, chipDot(chip));
        const double valueLeft = chip.label->baseline.x() + most[i] + chipGap;
        moveText(*chip.value, {valueLeft, baseline});
        x = valueLeft + chip.value->width() + spacing;
    }
}

QRectF MemoryCard::breakdownBar() const
{
    return {contentLeft(), barTop, contentRight() - contentLeft(), barHeight};
}

QRectF MemoryCard::badgeDot() const
{
    const double left = m_badge.baseline.x() - m_badge.width() - badgeGap - badgeDotSize;
    const double top = CardStyle::padding + (headerHeight - badgeDotSize) / 2;
    return {left, top, badgeDotSize, badgeDotSize};
}

QRectF MemoryCard::chipDot(const Chip &chip) const
{
    return {chip.label->baseline.x() - chipGap - chipDotSize, chipDotTop, chipDotSize, chipDotSize};
}

void MemoryCard::paintShapes(QPainter &painter, const QRect &dirty)
{
    painter.setPen(Qt::NoPen);
    const auto paintDot = [&painter, &dirty](const QRectF &dot, const QColor &color) {
        painter.setBrush(color);
        if (dot.intersects(dirty))
            painter.drawEllipse(dot);
    };
    if (!m_badge.text.isEmpty())
        paintDot(badgeDot(), m_badge.color);
    for (const Chip &chip : m_chips)
        paintDot(chipDot(chip), chip.color);
    if (breakdownBar().intersects(dirty))
        paintBreakdownBar(painter);
}

void MemoryCard::paintBreakdownBar(QPainter &painter) const
{
    const QRectF bar = breakdownBar();
    painter.save();
    // Each segment is the whole capsule, clipped to a rectangle: a clip path would leave ragged
    // ends.
    const auto fill = [&](double from, double to, const QColor &color) {
        const double left =
            snappedToPixels(painter, QPointF(bar.left() + bar.width() * from, 0)).x();
        const double right =
            snappedToPixels(painter, QPointF(bar.left() + bar.width() * to, 0)).x();
        if (right <= left)
            return;
        painter.setClipRect(QRectF(left, bar.top(), right - left, bar.height()));
        fillRounded(painter, bar, barHeight / 2, color);
    };
    fill(0, 1, Theme::track);
    double from = 0;
    for (const MemorySegment &segment : m_segments) {
        fill(from, from + segment.fraction, segment.color);
        from += segment.fraction;
    }
    painter.restore();
}

} // namespace corvane
