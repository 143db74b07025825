#include "cards/UtilizationCard.h"

#include "cards/HistoryChart.h"
#include "cards/InfoTexts.h"
#include "charts/CoreBars.h"
#include "charts/HoverTime.h"
#include "charts/Sparkline.h"
#include "ui/CardStyle.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <QtMath>

#include <algorithm>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int bandHeight = 52; ///< Of figure, subtitle and core bars; the same on all three cards.
constexpr int chartGap = 12;
constexpr TextLine figureLine{46.125, 32}; ///< A rounded top would shift the text at scale 2.
constexpr double figureShift = -1; ///< Aligns the ink, not the side bearing, with the left edge.
constexpr TextLine subtitleLine{83.5, 14};
constexpr double minFigureColumn = 96;
constexpr double barsGap = 16;
constexpr double absentOpacity = 0.65; ///< Distinguishes an absent reading from a true zero.

/// What differs between the cards of the units.
struct Look {
    Card::Heading heading = {};
    InfoTopic topic = InfoTopic::cpu;
    QString subtitleName = {}; ///< For assistive technology.
};

const Look &look(ComputeUnit unit)
{
    static const std::array<Look, 3> inOrder{
        Look{{u"cpu"_s, u"CPU"_s, Theme::cpu}, InfoTopic::cpu, u"Frequency"_s},
        Look{{u"memorychip.fill"_s, u"GPU"_s, Theme::gpu}, InfoTopic::gpu, u"Dominant state"_s},
        Look{{u"brain.head.profile"_s, u"Neural Engine"_s, Theme::ane},
             InfoTopic::ane,
             u"Power ceiling"_s}};
    return inOrder[static_cast<std::size_t>(unit)];
}

} // namespace

UtilizationCard::UtilizationCard(Kind kind, QWidget *parent, const ChipInfo &chip)
    : Card(look(kind).heading, infoText(look(kind).topic), parent),
      m_kind(kind),
      m_color(look(kind).heading.color),
      m_chip(chip),
      m_stat(addText(headerStat(u"Power and temperature"_s))),
      m_figure(addText({.name = u"Load"_s,
                        .font = Theme::systemFont(34, QFont::DemiBold),
                        .color = m_color,
                        .digits = Digits::proportional})),
      m_subtitle(addText({.name = look(kind).subtitleName,
                          .font = Theme::systemFont(11),
                          .color = Theme::textSecondary})),
      m_coreBars(new CoreBars(this)),
      m_chart(new Sparkline(this))
{
    m_figure.font.setLetterSpacing(QFont::AbsoluteSpacing, -0.8);
    m_coreBars->hide();
    m_coreBars->setAccessibleName(u"Load of the cores"_s);
    m_chart->setAccessibleName(look(kind).heading.title + u" load over time"_s);
    m_chart->setHoverPill([this](std::size_t index) { return pill(index); });
}

void UtilizationCard::show(const SystemMetrics &current, const std::vector<SystemMetrics> &history)
{
    const UnitReading reading = newestUnitReading(m_kind, current, history, m_chip);
    setText(m_stat, unitStatText(reading));
    setText(m_figure, percentText(unlessDenied(reading.loadPercent, reading.loadIsDenied)),
            current.chip ? m_color : Theme::withOpacity(m_color, absentOpacity));
    setText(m_subtitle, singleLine(unitSubtitle(reading).value_or(QString())));
    showCores(current);
    showChart(history);
}

void UtilizationCard::showChart(const std::vector<SystemMetrics> &history)
{
    SparklineData chart = historyChart(history);
    SparklineSeries series{
        .lineColor = m_color, .lineWidth = 1, .fillColors = {Theme::withOpacity(m_color, 0.55)}};
    series.values.reserve(history.size());
    m_readings.clear();
    for (const SystemMetrics &sample : history) {
        m_readings.push_back(unitReading(m_kind, sample.chip, m_chip));
        series.values.push_back(m_readings.back().loadPercent);
    }
    chart.series.push_back(std::move(series));
    chart.yDomain = {0, 100};
    m_chart->show(std::move(chart));
}

void UtilizationCard::showCores(const SystemMetrics &current)
{
    if (m_kind != Kind::cpu)
        return;
    m_cores = current.chip ? current.chip->cpuCoreUtilizations : std::vector<double>();
    m_coreBars->setVisible(!m_cores.empty());
    fitCoreBars();
}

void UtilizationCard::fitCoreBars()
{
    m_coreBars->show(fittedCoreBars(m_cores, m_color, m_coreBars->width()));
}

PillContent UtilizationCard::pill(std::size_t index) const
{
    return {HoverTime::string(m_chart->shown().timestamps[index]),
            {valuesRow(unitPillTexts(m_readings[index]), m_color)}};
}

void UtilizationCard::layOut()
{
    m_stat.baseline = headerStatEnd();
    m_stat.maxWidth = headerStatWidth();
    m_figure.baseline = {contentLeft() + figureShift, figureLine.baseline(m_figure.font)};
    m_subtitle.baseline = {contentLeft(), subtitleLine.baseline(m_subtitle.font)};
    const double widest = textWidth(u"100%"_s, m_figure.font, m_figure.digits);
    const double column = std::max(minFigureColumn, widest + figureShift);
    m_subtitle.maxWidth = m_kind == Kind::cpu ? column : contentRight() - contentLeft();

    const int barsLeft = qCeil(contentLeft() + column + barsGap);
    const int right = qFloor(contentRight());
    m_coreBars->setGeometry(barsLeft, bodyTop, std::max(right - barsLeft, 0), bandHeight);
    fitCoreBars();

    constexpr int chartTop = bodyTop + bandHeight + chartGap;
    m_chart->setGeometry(CardStyle::padding, chartTop, right - CardStyle::padding,
                         height() - CardStyle::padding - chartTop);
}

} // namespace corvane
