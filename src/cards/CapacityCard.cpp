#include "cards/CapacityCard.h"

#include "cards/MeansChart.h"
#include "charts/Sparkline.h"
#include "ui/CardStyle.h"
#include "ui/Icon.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr TextLine figureLine{45.5, 36};
constexpr double figureShift = -1; ///< Aligns the ink, not the side bearing, with the left edge.
constexpr double percentGap = 3;
constexpr TextLine amountLine{67.25, 16};
constexpr double stateIconSide = 24;
constexpr double stateIconTop = 59;
constexpr double stateGap = 10;
constexpr TextLine stateLine{58, 28};
constexpr double barHeight = 10;
constexpr TextLine chipLine{115.75, 14}; ///< A rounded top would shift the text at scale 2.
constexpr double chipDotTop = 120;
constexpr TextLine textLine{141.5, 14};
constexpr double lineGap = 6;

QFont amountFont(QFont::Weight weight)
{
    return Theme::systemFont(13, weight);
}

} // namespace

CapacityCard::CapacityCard(const Heading &heading, const InfoText &info, const QString &figureName,
                           QWidget *parent)
    : Card(heading, info, parent),
      m_figure(addText({.name = figureName,
                        .font = Theme::systemFont(44, QFont::DemiBold),
                        .color = Theme::textPrimary,
                        .digits = Digits::proportional})),
      m_percentSign(addText({.font = Theme::systemFont(22, QFont::Medium),
                             .color = Theme::textSecondary,
                             .isCaption = true})),
      m_state(addText({.name = figureName,
                       .font = Theme::systemFont(22, QFont::DemiBold),
                       .color = Theme::withOpacity(heading.color, Theme::absentOpacity)})),
      m_used(addText({.name = u"Used"_s,
                      .font = amountFont(QFont::DemiBold),
                      .color = Theme::textPrimary,
                      .alignment = Qt::AlignRight})),
      m_slash(addText({.font = amountFont(QFont::Normal),
                       .color = Theme::textSecondary,
                       .alignment = Qt::AlignRight,
                       .isCaption = true})),
      m_total(addText({.name = u"Total"_s,
                       .font = amountFont(QFont::Normal),
                       .color = Theme::textSecondary,
                       .alignment = Qt::AlignRight})),
      m_message(addText({.font = Theme::systemFont(10), .color = Theme::textSecondary})),
      m_lineLabel(addText(
          {.font = Theme::systemFont(11), .color = Theme::textTertiary, .isCaption = true})),
      m_line(addText({.font = Theme::systemFont(11), .color = Theme::textSecondary})),
      m_chart(new Sparkline(this))
{
    m_figure.font.setLetterSpacing(QFont::AbsoluteSpacing, -1);
}

void CapacityCard::showFigure(std::optional<double> percent, bool isLowerBound)
{
    const QString mark = isLowerBound ? u"≥"_s : QString();
    setText(m_figure, percent ? mark + fixedText(*percent, 0) : percentText(percent),
            percent ? Theme::textPrimary
                    : Theme::withOpacity(Theme::textPrimary, Theme::absentOpacity));
    setText(m_percentSign, percent ? u"%"_s : QString());
    setText(m_state, {});
    if (!std::exchange(m_stateSymbol, {}).isEmpty())
        updateArea(stateIcon());
    placeFigure();
}

void CapacityCard::showState(const QString &symbol, const QString &words)
{
    setText(m_figure, {});
    setText(m_percentSign, {});
    setText(m_state, words);
    if (std::exchange(m_stateSymbol, symbol) != symbol)
        updateArea(stateIcon());
}

void CapacityCard::showAmounts(const QString &used, const QString &total)
{
    setText(m_total, total);
    setText(m_slash, used.isEmpty() || total.isEmpty() ? QString() : u" / "_s);
    setText(m_used, used);
    placeAmounts();
}

void CapacityCard::showSegments(std::vector<BarSegment> segments)
{
    if (segments == m_segments)
        return;
    m_segments = std::move(segments);
    updateArea(breakdownBar());
}

void CapacityCard::setHasBar(bool hasBar)
{
    if (std::exchange(m_hasBar, hasBar) != hasBar)
        update();
}

void CapacityCard::showChips(std::vector<Chip> chips, double below)
{
    if (chips == m_chips && below == m_chipsBelow)
        return;
    m_chips = std::move(chips);
    m_chipsBelow = below;
    while (m_shownChips.size() < m_chips.size()) {
        CardText &label = addText(
            {.font = Theme::systemFont(10), .color = Theme::textSecondary, .isCaption = true});
        CardText &value =
            addText({.font = Theme::systemFont(10, QFont::DemiBold), .color = Theme::textPrimary});
        m_shownChips.push_back({&label, &value});
    }
    for (std::size_t i = 0; i < m_shownChips.size(); ++i) {
        ShownChip &shown = m_shownChips[i];
        const Chip chip = i < m_chips.size() ? m_chips[i] : Chip();
        if (shown.color != chip.color || chip.label.isEmpty())
            updateArea(chipDot(shown));
        shown.color = chip.color;
        shown.value->name = chip.label;
        setText(*shown.label, chip.label);
        setText(*shown.value, chip.value);
    }
    placeChips();
}

void CapacityCard::showMessage(const QString &message)
{
    setText(m_message, message);
}

void CapacityCard::showLine(const QString &label, const QString &value)
{
    m_line.name = label;
    setText(m_lineLabel, label);
    setText(m_line, value);
    placeLine();
}

void CapacityCard::showMeans(const MeanWindow &window, Measure measure)
{
    if (m_shownMeans == window.key())
        return;
    const MeansChart means(window);
    SparklineData chart = means.chart();
    chart.band = means.ranges(measure);
    chart.bandColor = Theme::withOpacity(heading().color, bandOpacity);
    showChart(std::move(chart), means.means(measure));
    m_shownMeans = window.key();
}

void CapacityCard::showChart(SparklineData chart, std::vector<std::optional<double>> percents)
{
    const QColor &color = heading().color;
    chart.series.push_back(
        {.values = std::move(percents),
         .lineColor = color,
         .lineWidth = 2,
         .fillColors = {Theme::withOpacity(color, 0.55), Theme::withOpacity(color, 0.05)}});
    chart.yDomain = {0, 100};
    m_shownMeans.reset();
    m_chart->show(std::move(chart));
}

void CapacityCard::layOut()
{
    m_figure.baseline = {contentLeft() + figureShift, figureLine.baseline(m_figure.font)};
    m_state.baseline = {contentLeft() + stateIconSide + stateGap, stateLine.baseline(m_state.font)};
    m_message.baseline = {contentLeft(), chipLine.baseline(m_message.font)};
    m_message.maxWidth = contentRight() - contentLeft();
    placeFigure();
    placeAmounts();
    placeChips();
    placeLine();
    place(*m_chart, contentBelow(chartTop));
}

void CapacityCard::placeFigure()
{
    moveText(m_percentSign,
             {m_figure.baseline.x() + m_figure.width() + percentGap, m_figure.baseline.y()});
}

void CapacityCard::placeAmounts()
{
    const double baseline = amountLine.baseline(m_total.font);
    moveText(m_total, {contentRight(), baseline});
    moveText(m_slash, {contentRight() - m_total.width(), baseline});
    moveText(m_used, {m_slash.baseline.x() - m_slash.width(), baseline});
}

void CapacityCard::placeLine()
{
    const double baseline = textLine.baseline(m_line.font);
    moveText(m_lineLabel, {contentLeft(), baseline});
    const double labelWidth = m_lineLabel.text.isEmpty() ? 0 : m_lineLabel.width() + lineGap;
    moveText(m_line, {contentLeft() + labelWidth, baseline});
    m_line.maxWidth = contentRight() - m_line.baseline.x();
}

void CapacityCard::placeChips()
{
    if (m_chips.empty())
        return;
    const QFont &labelFont = m_shownChips[0].label->font;
    const double baseline = chipLine.baseline(labelFont) + m_chipsBelow;
    const std::vector<ChipPlace> places =
        chipPlaces(m_chips, labelFont, m_shownChips[0].value->font, contentRight() - contentLeft());
    for (std::size_t i = 0; i < places.size(); ++i) {
        const ShownChip &chip = m_shownChips[i];
        const QRectF dotBefore = chipDot(chip);
        const bool isCut = places[i].labelWidth < textWidth(m_chips[i].label, labelFont);
        chip.label->maxWidth = isCut ? places[i].labelWidth : 0;
        moveText(*chip.label, {contentLeft() + places[i].label, baseline});
        moveText(*chip.value, {contentLeft() + places[i].value, baseline});
        if (chipDot(chip) != dotBefore)
            updateShape(dotBefore, chipDot(chip));
    }
}

QRectF CapacityCard::breakdownBar() const
{
    return {contentLeft(), barTop, contentRight() - contentLeft(), barHeight};
}

QRectF CapacityCard::stateIcon() const
{
    return {contentLeft(), stateIconTop, stateIconSide, stateIconSide};
}

QRectF CapacityCard::chipDot(const ShownChip &chip) const
{
    constexpr double gap = 4;
    return {chip.label->baseline.x() - gap - chipDotSize, chipDotTop + m_chipsBelow, chipDotSize,
            chipDotSize};
}

void CapacityCard::paintShapes(QPainter &painter, const QRectF &dirty)
{
    painter.setPen(Qt::NoPen);
    for (const ShownChip &chip : m_shownChips) {
        painter.setBrush(chip.color);
        if (!chip.label->text.isEmpty() && chipDot(chip).intersects(dirty))
            painter.drawEllipse(chipDot(chip));
    }
    if (m_hasBar && breakdownBar().intersects(dirty))
        paintSegmentBar(painter, breakdownBar(), m_segments);
    if (!m_stateSymbol.isEmpty() && stateIcon().intersects(dirty))
        paintIcon(painter, m_stateSymbol, stateIcon(), m_state.color);
}

} // namespace corvane
