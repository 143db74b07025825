#include "cards/PowerCard.h"

#include "cards/HistoryChart.h"
#include "cards/InfoTexts.h"
#include "charts/HoverTime.h"
#include "charts/Sparkline.h"
#include "ui/CardStyle.h"
#include "ui/NumberText.h"
#include "ui/Theme.h"

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr int legendHeight = 14;
constexpr int chartGap = 12;
constexpr double legendDot = 6;
constexpr double legendDotGap = 5;
constexpr double legendGap = 14; ///< Between entries.

/// One component, from the bottom of the stack upwards.
struct Component {
    QString label = {};
    QColor color = {};
};

const std::array<Component, 3> &components()
{
    static const std::array<Component, 3> all{Component{u"CPU"_s, Theme::cpu},
                                              Component{u"GPU"_s, Theme::gpu},
                                              Component{u"ANE"_s, Theme::ane}};
    return all;
}

std::array<double, 3> watts(const SystemMetrics &sample)
{
    if (!sample.chip)
        return {};
    return {sample.chip->cpuWatts, sample.chip->gpuWatts, sample.chip->aneWatts};
}

/// Absent when no sample has the watts of all parts.
std::optional<double> shownPeak(double peak, const std::vector<SystemMetrics> &history)
{
    const bool isDenied = std::ranges::all_of(history, [](const SystemMetrics &sample) {
        return sample.chip && sample.chip->denied.anyWatts();
    });
    return unlessDenied(peak, isDenied && !history.empty());
}

QString powerStatText(std::optional<double> peak, const std::optional<ChipReading> &chip)
{
    const QString text = u"peak "_s + wattsText(peak, 1);
    const std::optional<double> celsius = chip ? chip->packageTempC : std::nullopt;
    return celsius && *celsius > 0 ? text + u" · pkg "_s + celsiusText(*celsius) : text;
}

} // namespace

double peakTotal(const std::vector<SystemMetrics> &history)
{
    const auto count = static_cast<std::ptrdiff_t>(history.size());
    double peak = 0;
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const std::ptrdiff_t first = std::max<std::ptrdiff_t>(i - 1, 0);
        const std::ptrdiff_t last = std::min(i + 1, count - 1);
        std::array<double, 3> sums = {};
        for (std::ptrdiff_t near = first; near <= last; ++near) {
            const std::array<double, 3> sample = watts(history[static_cast<std::size_t>(near)]);
            for (std::size_t part = 0; part < sums.size(); ++part)
                sums[part] += sample[part];
        }
        const auto samples = static_cast<double>(last - first + 1);
        peak = std::max(peak, sums[0] / samples + sums[1] / samples + sums[2] / samples);
    }
    return peak;
}

double powerScale(double peak)
{
    const double room = peak * 1.18;
    if (room < 5)
        return 5;
    if (room < 10)
        return 10;
    const double step = room < 25 ? 5 : room < 100 ? 10 : 25;
    return std::ceil(room / step) * step;
}

PowerCard::PowerCard(QWidget *parent)
    : Card({u"bolt.fill"_s, u"Package Power"_s, Theme::power}, infoText(InfoTopic::power), parent),
      m_stat(addText(headerStat(u"Power"_s))),
      m_chart(new Sparkline(this))
{
    for (std::size_t i = 0; i < m_legend.size(); ++i) {
        m_legend[i] = &addText({.text = components()[i].label,
                                .font = Theme::systemFont(10, QFont::Medium),
                                .color = Theme::textSecondary,
                                .isCaption = true});
    }
    m_chart->setAccessibleName(u"Power of CPU, GPU and ANE over time"_s);
    m_chart->setHoverPill([this](std::size_t index) { return pill(index); });
}

void PowerCard::show(const SystemMetrics &current, const std::vector<SystemMetrics> &history)
{
    const double peak = peakTotal(history);
    raiseYMax(peak);
    setText(m_stat, powerStatText(shownPeak(peak, history), current.chip));
    showChart(history);
}

void PowerCard::recomputeYMax(const std::vector<SystemMetrics> &history)
{
    raiseYMax(peakTotal(history));
}

void PowerCard::raiseYMax(double peak)
{
    m_stableYMax = std::max(m_stableYMax, powerScale(peak));
}

void PowerCard::showChart(const std::vector<SystemMetrics> &history)
{
    SparklineData chart = historyChart(history);
    m_denied.clear();
    for (const SystemMetrics &sample : history)
        m_denied.push_back(sample.chip ? sample.chip->denied : DeniedParts{});
    for (std::size_t part = 0; part < components().size(); ++part) {
        const QColor &color = components()[part].color;
        SparklineSeries series{
            .lineColor = color, .lineWidth = 1, .fillColors = {Theme::withOpacity(color, 0.55)}};
        series.values.reserve(history.size());
        for (const SystemMetrics &sample : history)
            series.values.push_back(watts(sample)[part]);
        chart.series.push_back(std::move(series));
    }
    chart.yDomain = {0, m_stableYMax};
    chart.stacking = Stacking::stacked;
    chart.showsGrid = false;
    m_chart->show(std::move(chart));
}

PillContent PowerCard::pill(std::size_t index) const
{
    const SparklineData &chart = m_chart->shown();
    const DeniedParts &denied = m_denied[index];
    const std::array<bool, 3> isDenied{denied.cpuWatts, denied.gpuWatts, denied.aneWatts};
    double total = 0;
    for (const SparklineSeries &series : chart.series)
        total += series.values[index];
    PillContent content{
        HoverTime::string(chart.timestamps[index]),
        {totalRow(wattsText(unlessDenied(total, denied.anyWatts()), 2), Theme::power)}};
    for (std::size_t part = 0; part < components().size(); ++part) {
        content.rows.push_back(componentRow(
            components()[part].label,
            isDenied[part] ? u"\u2013"_s : fixedText(chart.series[part].values[index], 2),
            components()[part].color));
    }
    return content;
}

void PowerCard::layOut()
{
    m_stat.baseline = headerStatEnd();
    m_stat.maxWidth = headerStatWidth();
    // Without the fraction the text would shift by a pixel.
    constexpr TextLine legend{Card::bodyTop - 0.25, legendHeight};
    double x = contentLeft();
    for (CardText *entry : m_legend) {
        entry->baseline = {x + legendDot + legendDotGap, legend.baseline(entry->font)};
        x = entry->baseline.x() + entry->width() + legendGap;
    }
    constexpr int chartTop = bodyTop + legendHeight + chartGap;
    m_chart->setGeometry(CardStyle::padding, chartTop, width() - 2 * CardStyle::padding,
                         height() - CardStyle::padding - chartTop);
}

void PowerCard::paintShapes(QPainter &painter, const QRect &dirty)
{
    constexpr double top = bodyTop + (legendHeight - legendDot) / 2;
    painter.setPen(Qt::NoPen);
    for (std::size_t i = 0; i < m_legend.size(); ++i) {
        const double left = m_legend[i]->baseline.x() - legendDotGap - legendDot;
        const QRectF dot(left, top, legendDot, legendDot);
        painter.setBrush(components()[i].color);
        if (dot.intersects(dirty))
            painter.drawEllipse(dot);
    }
}

} // namespace corvane
