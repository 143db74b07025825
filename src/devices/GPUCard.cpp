#include "devices/GPUCard.h"

#include "cards/DeniedTexts.h"
#include "cards/HistoryChart.h"
#include "cards/InfoTexts.h"
#include "cards/MeansChart.h"
#include "charts/HoverTime.h"
#include "charts/Sparkline.h"
#include "devices/GPUNames.h"
#include "records/MachineParts.h"
#include "records/MachineTotals.h"
#include "ui/CardStyle.h"
#include "ui/ContentArea.h"
#include "ui/MachineText.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr std::size_t mostCharts = 4;
constexpr double columnGap = 14;
constexpr int chartTop = 110;
constexpr double rowPitch = 58; ///< Of the columns without charts.

constexpr TextLine nameLine{45, 13};
constexpr TextLine subtitleLine{83.5, 14};
constexpr TextLine largeFigureLine{46.125, 32};
constexpr TextLine figureLine{58.25, 24};
constexpr double figureShift = -1; ///< Aligns the ink, not the side bearing, with the left edge.

/// "268 W · 78°C", as far as it is known.
QString wattsAndTemperature(const GPUMetrics *metrics)
{
    QStringList parts;
    if (metrics && metrics->watts)
        parts.append(wattsText(metrics->watts, 0));
    if (metrics && metrics->tempC)
        parts.append(celsiusText(*metrics->tempC));
    return parts.join(u" · "_s);
}

/// Of all GPUs: "739.13 W · 81°C".
QString sumText(const SystemMetrics &sample)
{
    QStringList parts;
    if (const auto watts = gpuWatts(sample))
        parts.append(wattsText(watts, 2));
    if (const auto celsius = gpuTemperature(sample))
        parts.append(celsiusText(*celsius));
    return parts.join(u" · "_s);
}

/// The same reason for which none of them tells its load, if there is one that will not pass by
/// itself.
std::optional<Coverage> commonReason(const std::vector<GPUCoverage> &gpus)
{
    if (gpus.empty() || !isDenied(gpus.front().load) || gpus.front().load == Coverage::asleep)
        return std::nullopt;
    const Coverage reason = gpus.front().load;
    const bool isCommon =
        std::ranges::all_of(gpus, [reason](const GPUCoverage &gpu) { return gpu.load == reason; });
    return isCommon ? std::optional(reason) : std::nullopt;
}

} // namespace

GPUCard::GPUCard(QWidget *parent)
    : Card({u"memorychip.fill"_s, u"GPU"_s, Theme::gpu}, infoText(InfoTopic::gpu), parent),
      m_stat(addText(headerStat(u"Power and temperature"_s)))
{
}

void GPUCard::show(const SystemMetrics &current, const ChartHistory &history)
{
    const MachineCoverage &machine = coverageOf(current);
    showMachine(machine);
    setNotes(gpuNotes(current));
    setText(m_stat, sumText(current));

    if (const std::optional<Coverage> reason = commonReason(m_gpus)) {
        const DeniedNotice notice = gpuNotice(*reason);
        setText(m_stat, singleLine(gpuGroupName(m_gpus)));
        showNotice(notice.symbol, notice.line, notice.hint);
        clearColumns(0);
        return;
    }
    showNotice({}, {}, {});
    m_watts.resize(m_gpus.size());
    for (std::size_t i = 0; i < m_gpus.size(); ++i) {
        showColumn(i, current.chip);
        if (!history.means)
            showChart(i, history.recent);
    }
    showMeans(history.means);
    clearColumns(m_gpus.size());
}

void GPUCard::showMachine(const MachineCoverage &machine)
{
    std::vector<GPUCoverage> gpus = countedGPUs(machine);
    const bool isAnotherNumber = gpus.size() != m_gpus.size();
    if (isAnotherNumber)
        m_shownMeans.reset();
    m_gpus = std::move(gpus);
    while (m_columns.size() < m_gpus.size())
        addColumn();
    setInfo(infoText(InfoTopic::gpu, machine));
    showTag(u"GPUs"_s, QString::number(m_gpus.size()));
    if (isAnotherNumber) {
        layOut();
        update();
    }
}

void GPUCard::addColumn()
{
    const std::size_t index = m_columns.size();
    Column column;
    column.name = &addText({.font = Theme::systemFont(10, QFont::DemiBold),
                            .color = Theme::textSecondary,
                            .isCaption = true});
    column.figure = &addText({.name = u"Load of GPU %1"_s.arg(index),
                              .color = Theme::gpu,
                              .digits = Digits::proportional});
    column.subtitle = &addText({.name = u"Power and temperature of GPU %1"_s.arg(index),
                                .font = Theme::systemFont(11),
                                .color = Theme::textSecondary});
    column.chart = new Sparkline(this);
    column.chart->setAccessibleName(u"Load of GPU %1 over time"_s.arg(index));
    column.chart->setHoverPill([this, index](std::size_t sample) { return pill(index, sample); });
    m_columns.push_back(column);
}

void GPUCard::showColumn(std::size_t index, const std::optional<ChipReading> &chip)
{
    const GPUCoverage &gpu = m_gpus[index];
    const Column &column = m_columns[index];
    const GPUMetrics *metrics = metricsOf(gpu, chip);
    const bool isKnown = metrics && metrics->activeFraction;
    const bool isAsleep = !isKnown && gpu.load == Coverage::asleep;
    const QColor color =
        isKnown ? Theme::gpu : Theme::withOpacity(Theme::gpu, Theme::absentOpacity);
    setText(*column.figure,
            isAsleep      ? u"Asleep"_s
                : isKnown ? percentText(*metrics->activeFraction * 100)
                          : u"–"_s,
            color);

    QString subtitle = wattsAndTemperature(metrics);
    if (!isKnown && !isAsleep && isDenied(gpu.load))
        subtitle = reasonText(gpu.load);
    const QString name = singleLine(gpuColumnName(m_gpus, index));
    const bool isNamedBelow = m_gpus.size() <= 2;
    setText(*column.name, isNamedBelow ? QString() : name);
    if (isNamedBelow)
        subtitle = subtitle.isEmpty() ? name : name + u" · "_s + subtitle;
    setText(*column.subtitle, subtitle);
    column.chart->setVisible(hasCharts());
}

void GPUCard::clearColumns(std::size_t from)
{
    for (std::size_t i = from; i < m_columns.size(); ++i) {
        const Column &column = m_columns[i];
        for (CardText *text : {column.name, column.figure, column.subtitle})
            setText(*text, {});
        column.chart->hide();
    }
}

void GPUCard::showMeans(const std::optional<MeanWindow> &window)
{
    const auto key = window ? std::optional(window->key()) : std::nullopt;
    if (std::exchange(m_shownMeans, key) == key || !window || !hasCharts())
        return;
    const MeansChart means(*window);
    for (std::size_t i = 0; i < m_gpus.size(); ++i) {
        const auto measure = static_cast<Measure>(indexOf(Measure::firstGPU) + i);
        m_columns[i].chart->show(
            means.loadChart(m_gpus.size() > 1 ? measure : Measure::gpuLoad, Theme::gpu));
    }
}

void GPUCard::showChart(std::size_t index, const std::vector<SystemMetrics> &history)
{
    if (!hasCharts())
        return;
    SparklineData chart = historyChart(history);
    SparklineSeries series{.lineColor = Theme::gpu,
                           .lineWidth = 1,
                           .fillColors = {Theme::withOpacity(Theme::gpu, 0.55)}};
    series.values.reserve(history.size());
    m_watts[index].clear();
    for (const SystemMetrics &sample : history) {
        const GPUMetrics *metrics = metricsOf(m_gpus[index], sample.chip);
        const std::optional<double> load = metrics ? metrics->activeFraction : std::nullopt;
        series.values.push_back(load ? std::optional(*load * 100) : std::nullopt);
        m_watts[index].push_back(metrics ? metrics->watts : std::nullopt);
    }
    chart.series.push_back(std::move(series));
    chart.yDomain = {0, 100};
    m_columns[index].chart->show(std::move(chart));
}

PillContent GPUCard::pill(std::size_t index, std::size_t sample) const
{
    const SparklineData &shown = m_columns[index].chart->shown();
    if (shown.showsMeans)
        return loadPill(shown, sample, Theme::gpu);
    QStringList values{percentText(shown.series.front().values[sample])};
    if (m_gpus[index].watts == Coverage::known)
        values.append(tightWattsText(m_watts[index][sample], 2));
    return {HoverTime::string(shown.timestamps[sample]), {valuesRow(values, Theme::gpu)}};
}

bool GPUCard::hasCharts() const
{
    return m_gpus.size() <= mostCharts;
}

std::size_t GPUCard::columnsInRow() const
{
    return hasCharts() ? m_gpus.size() : (m_gpus.size() + 1) / 2;
}

void GPUCard::layOut()
{
    m_stat.baseline = headerStatEnd();
    m_stat.maxWidth = headerStatWidth();
    if (m_gpus.empty())
        return;
    constexpr double roomForFigure = 52;
    const auto inRow = static_cast<double>(columnsInRow());
    const double width = (contentRight() - contentLeft() - columnGap * (inRow - 1)) / inRow;
    const bool isLarge = m_gpus.size() <= 2;
    QFont font = Theme::systemFont(isLarge ? 34 : width < roomForFigure ? 15 : 24, QFont::DemiBold);
    font.setLetterSpacing(QFont::AbsoluteSpacing, isLarge ? -0.8 : -0.4);
    for (std::size_t i = 0; i < m_gpus.size(); ++i) {
        const Column &column = m_columns[i];
        const auto inThisRow = static_cast<double>(i % columnsInRow());
        const double left = contentLeft() + inThisRow * (width + columnGap);
        const std::size_t row = i / columnsInRow();
        const double down = static_cast<double>(row) * rowPitch;
        const TextLine line = isLarge ? largeFigureLine : figureLine;
        column.figure->font = font;
        column.name->baseline = {left, down + nameLine.baseline(column.name->font)};
        column.figure->baseline = {left + figureShift, down + line.baseline(font)};
        column.subtitle->baseline = {left, down + subtitleLine.baseline(column.subtitle->font)};
        for (CardText *text : {column.name, column.figure, column.subtitle})
            text->maxWidth = width;
        QRectF chart = contentBelow(chartTop);
        chart.setLeft(left);
        chart.setWidth(width);
        place(*column.chart, edgesOnPixels(chart, devicePixelRatioF()));
    }
}

} // namespace corvane
