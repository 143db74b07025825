#include "Ratio.h"

#include "charts/HoverTime.h"
#include "charts/RoundBends.h"
#include "charts/Sparkline.h"
#include "ui/Theme.h"

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QMouseEvent>
#include <QPainter>

#include <cmath>

// The cost of one tick for a chart of the dashboard. `fillsItsArea` is the reference: the pixels of
// the power chart blended once, as plain rectangles.

namespace {

using namespace corvane;

constexpr QSize powerChart(585, 174);

std::vector<std::optional<double>> watts(std::size_t samples, double mean, std::size_t shift)
{
    std::vector<std::optional<double>> values;
    for (std::size_t i = 0; i < samples; ++i) {
        const auto t = static_cast<double>(i + shift);
        values.push_back(mean * (1 + 0.5 * std::sin(t * 0.3) + 0.1 * std::sin(t * 2.1)));
    }
    return values;
}

SparklineData powerData(std::size_t samples, std::size_t shift)
{
    SparklineData data{.yDomain = {0, 60}, .stacking = Stacking::stacked, .showsGrid = false};
    for (std::size_t i = 0; i < samples; ++i)
        data.timestamps.push_back(static_cast<double>(i + shift));
    data.xDomain = {data.timestamps.front(), data.timestamps.back()};
    const std::pair<double, QColor> parts[] = {{10, Theme::cpu}, {20, Theme::gpu}, {1, Theme::ane}};
    for (const auto &[mean, color] : parts)
        data.series.push_back({.values = watts(samples, mean, shift),
                               .lineColor = color,
                               .fillColors = {Theme::withOpacity(color, 0.55)}});
    return data;
}

QImage canvas(double scale)
{
    QImage image(powerChart * scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::black);
    return image;
}

void hover(Sparkline &chart)
{
    const QPointF place(300, 20);
    QMouseEvent move(QEvent::MouseMove, place, place, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&chart, &move);
}

void fillsItsArea(benchmark::State &state)
{
    QImage image = canvas(static_cast<double>(state.range(0)));
    QPainter painter(&image);
    const QColor color = Theme::withOpacity(Theme::gpu, 0.55);
    for (auto _ : state)
        painter.fillRect(QRectF({}, powerChart), color);
}

/// A strip of the memory chart's line, with its round bends against mitres: 13 samples, 2 points
/// wide. Range 0: nearly flat, or bent sharply at each sample.
void roundsBends(benchmark::State &state)
{
    QImage image = canvas(1);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QPen pen(Theme::memory, 2, Qt::SolidLine, Qt::RoundCap, Qt::MiterJoin);
    pen.setMiterLimit(10);
    painter.setPen(pen);
    const double height = state.range(0) != 0 ? 15 : 1;
    QPolygonF line;
    for (int i = 0; i < 13; ++i)
        line.append(QPointF(i * 9.9, 40 + (i % 2 == 0 ? -height : height)));
    compare(
        state, [&] { painter.drawPolyline(withRoundBends(line)); },
        [&] { painter.drawPolyline(line); });
}

/// New data and a repaint: range 0 is the scale, range 1 the number of samples, range 2 whether the
/// pointer rests on the chart.
void ticks(benchmark::State &state)
{
    QImage image = canvas(static_cast<double>(state.range(0)));
    const auto samples = static_cast<std::size_t>(state.range(1));
    Sparkline chart;
    chart.resize(powerChart);
    chart.setHoverPill([](std::size_t index) {
        return PillContent{
            HoverTime::string(static_cast<double>(index)),
            {totalRow(QStringLiteral("39.60 W"), Theme::power),
             componentRow(QStringLiteral("CPU"), QStringLiteral("9.30"), Theme::cpu)}};
    });
    if (state.range(2))
        hover(chart);
    const SparklineData data[] = {powerData(samples, 0), powerData(samples, 1)};
    std::size_t tick = 0;
    for (auto _ : state) {
        chart.show(data[++tick % 2]);
        chart.render(&image, {}, {}, QWidget::DrawChildren);
    }
}

} // namespace

BENCHMARK(fillsItsArea)->Arg(1)->Arg(2)->MeasureProcessCPUTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(roundsBends)
    ->ArgName("bent")
    ->Arg(0)
    ->Arg(1)
    ->UseManualTime()
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(ticks)
    ->ArgNames({"scale", "samples", "hovered"})
    ->Args({1, 60, 0})
    ->Args({1, 60, 1})
    ->Args({1, 180, 0})
    ->Args({2, 60, 0})
    ->MeasureProcessCPUTime() // Qt fills gradients on threads of its own.
    ->Unit(benchmark::kMicrosecond);

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
