#include "cards/UtilizationCard.h"

#include "cards/DeniedTexts.h"
#include "cards/HistoryChart.h"
#include "cards/InfoTexts.h"
#include "cards/MeansChart.h"
#include "charts/CoreBars.h"
#include "charts/HoverTime.h"
#include "charts/Sparkline.h"
#include "records/MachineParts.h"
#include "ui/ContentArea.h"
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
constexpr TextLine stateLine{52, 28};

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
      m_note(addText(headerStat({}))),
      m_stat(addText(headerStat(u"Power and temperature"_s))),
      m_figure(addText({.name = u"Load"_s,
                        .font = Theme::systemFont(34, QFont::DemiBold),
                        .color = m_color,
                        .digits = Digits::proportional})),
      m_state(addText({.name = u"Load"_s,
                       .font = Theme::systemFont(22, QFont::DemiBold),
                       .color = Theme::withOpacity(m_color, Theme::absentOpacity)})),
      m_subtitle(addText({.name = look(kind).subtitleName,
                          .font = Theme::systemFont(11),
                          .color = Theme::textSecondary})),
      m_coreBars(new CoreBars(this)),
      m_chart(new Sparkline(this))
{
    m_note.color = Theme::textTertiary;
    m_figure.font.setLetterSpacing(QFont::AbsoluteSpacing, -0.8);
    m_coreBars->hide();
    m_coreBars->setAccessibleName(u"Load of the cores"_s);
    m_chart->setAccessibleName(look(kind).heading.title + u" load over time"_s);
    m_chart->setHoverPill([this](std::size_t index) { return pill(index); });
}

void UtilizationCard::show(const SystemMetrics &current, const ChartHistory &history)
{
    const MachineCoverage &machine = coverageOf(current);
    const UnitReading reading = newestUnitReading(m_kind, current, history.recent, m_chip);
    showMachine(machine);
    if (m_kind == Kind::gpu && !machine.isWhole)
        setNotes(gpuNotes(current));
    if (history.means)
        showMeans(*history.means, machine);
    else
        showChart(current, history.recent);
    const Coverage coverage = loadCoverage(current, reading);
    if (coverage == Coverage::known)
        showReading(reading, current.chip && (machine.isWhole || !reading.loadIsDenied));
    else
        showDenied(coverage, machine);
    if (m_kind == Kind::cpu && !machine.isWhole && machine.cpuWatts == Coverage::locked
        && !hasWatts(machine))
        showStat(u"watts locked"_s, unitStatText(reading));
    showCores(current);
}

void UtilizationCard::showMachine(const MachineCoverage &machine)
{
    setInfo(infoText(look(m_kind).topic, machine));
    if (machine.isWhole)
        return;
    if (m_kind == Kind::cpu)
        setNotes(cpuNotes(machine));
    if (m_kind != Kind::ane)
        return;
    setTitle(u"NPU"_s);
    setNotes(npuNotes(machine));
    m_subtitle.name = u"Clock"_s;
    m_chart->setAccessibleName(u"NPU load over time"_s);
}

void UtilizationCard::showReading(const UnitReading &reading, bool isKnown)
{
    showNotice({}, {}, {});
    m_chart->setVisible(true);
    setText(m_state, {});
    showStat({}, unitStatText(reading));
    setText(m_figure, percentText(unlessDenied(reading.loadPercent, reading.loadIsDenied)),
            isKnown ? m_color : Theme::withOpacity(m_color, Theme::absentOpacity));
    setText(m_subtitle, singleLine(unitSubtitle(reading).value_or(QString())));
}

void UtilizationCard::showStat(const QString &note, const QString &stat)
{
    setText(m_stat, stat);
    setText(m_note, note.isEmpty() || stat.isEmpty() ? note : note + u" · "_s);
    moveText(m_note, {m_stat.baseline.x() - m_stat.width(), m_stat.baseline.y()});
}

Coverage UtilizationCard::loadCoverage(const SystemMetrics &current,
                                       const UnitReading &reading) const
{
    const MachineCoverage &machine = coverageOf(current);
    if (machine.isWhole || m_kind == Kind::cpu || reading.integratedStandsIn)
        return Coverage::known;
    if (m_kind == Kind::ane)
        return machine.npuLoad == Coverage::absent ? Coverage::known : machine.npuLoad;
    const std::vector<GPUCoverage> gpus = countedGPUs(machine);
    return gpus.empty() ? Coverage::known : gpus.front().load;
}

void UtilizationCard::showDenied(Coverage coverage, const MachineCoverage &machine)
{
    setText(m_figure, {});
    setText(m_subtitle, {});
    const std::vector<GPUCoverage> gpus = countedGPUs(machine);
    const bool isGPU = m_kind == Kind::gpu && !gpus.empty();
    showStat({}, isGPU ? singleLine(gpus.front().name) : QString());
    const DeniedNotice notice = gpuNotice(coverage);
    // A card that has just fallen asleep keeps its chart.
    const bool keepsChart = coverage == Coverage::asleep && hasChart();
    m_chart->setVisible(keepsChart);
    setText(m_state, keepsChart ? notice.line : QString());
    if (keepsChart)
        showNotice({}, {}, {});
    else
        showNotice(notice.symbol, notice.line, notice.hint);
}

bool UtilizationCard::hasChart() const
{
    const std::vector<SparklineSeries> &series = m_chart->shown().series;
    return !series.empty() && std::ranges::any_of(series.front().values, [](const auto &value) {
        return value.has_value();
    });
}

void UtilizationCard::showChart(const SystemMetrics &current,
                                const std::vector<SystemMetrics> &history)
{
    m_shownMeans.reset();
    const MachineCoverage &machine = coverageOf(current);
    SparklineData chart = historyChart(history);
    SparklineSeries series{
        .lineColor = m_color, .lineWidth = 1, .fillColors = {Theme::withOpacity(m_color, 0.55)}};
    series.values.reserve(history.size());
    m_readings.clear();
    for (const SystemMetrics &sample : history) {
        m_readings.push_back(machine.isWhole ? unitReading(m_kind, sample.chip, m_chip)
                                             : unitReading(m_kind, sample, machine));
        const UnitReading &reading = m_readings.back();
        series.values.push_back(unlessDenied(reading.loadPercent, reading.loadIsDenied));
    }
    chart.series.push_back(std::move(series));
    chart.yDomain = {0, 100};
    m_chart->show(std::move(chart));
}

void UtilizationCard::showMeans(const MeanWindow &window, const MachineCoverage &machine)
{
    if (m_shownMeans == window.key())
        return;
    m_shownMeans = window.key();
    const MeansChart means(window);
    const bool isFromWatts = m_kind == Kind::ane && machine.isWhole;
    const auto loadOfWatts = [this](double watts) { return neuralEngineLoad(watts, m_chip); };
    m_chart->show(isFromWatts ? means.loadChart(Measure::npuWatts, m_color, loadOfWatts)
                              : means.loadChart(m_kind == Kind::cpu       ? Measure::cpuLoad
                                                    : m_kind == Kind::gpu ? Measure::gpuLoad
                                                                          : Measure::npuLoad,
                                                m_color));
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
    m_coreBars->show(fittedCoreBars(m_cores, m_color, contentArea(*m_coreBars).width()));
}

PillContent UtilizationCard::pill(std::size_t index) const
{
    if (m_chart->shown().showsMeans)
        return loadPill(m_chart->shown(), index, m_color);
    return {HoverTime::string(m_chart->shown().timestamps[index]),
            {valuesRow(unitPillTexts(m_readings[index]), m_color)}};
}

void UtilizationCard::layOut()
{
    m_stat.baseline = headerStatEnd();
    m_stat.maxWidth = headerStatWidth();
    m_note.baseline = {m_stat.baseline.x() - m_stat.width(), m_stat.baseline.y()};
    m_state.baseline = {contentLeft(), stateLine.baseline(m_state.font)};
    m_figure.baseline = {contentLeft() + figureShift, figureLine.baseline(m_figure.font)};
    m_subtitle.baseline = {contentLeft(), subtitleLine.baseline(m_subtitle.font)};
    const double widest = textWidth(u"100%"_s, m_figure.font, m_figure.digits);
    const double column = std::max(minFigureColumn, widest + figureShift);
    m_subtitle.maxWidth = m_kind == Kind::cpu ? column : contentRight() - contentLeft();

    const int barsLeft = qCeil(contentLeft() + column + barsGap);
    const double barsWidth = std::max(contentRight() - barsLeft, 0.0);
    place(*m_coreBars, QRectF(barsLeft, bodyTop, barsWidth, bandHeight));
    fitCoreBars();
    place(*m_chart, contentBelow(bodyTop + bandHeight + chartGap));
}

} // namespace corvane
