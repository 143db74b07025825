// The cost of a tick of the open dashboard on the main thread: passing the data to every part and
// painting what changed, as a ratio to clearing as many pixels as the whole window has.

#include "cards/MemoryCard.h"
#include "cards/UtilizationCard.h"
#include "dashboard/DashboardHeader.h"
#include "dashboard/MainWindow.h"
#include "devices/PowerCard.h"
#include "lists/AIWorkloadsCard.h"
#include "lists/ProcessCard.h"
#include "timeline/Timeline.h"

#include <QApplication>
#include <QImage>

#include <benchmark/benchmark.h>

#include <cmath>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

constexpr QSize windowSize{1280, 900};

SystemMetrics sample(int second)
{
    const double wave = 0.5 + 0.3 * std::sin(second / 5.0) + 0.1 * std::sin(second * 2.9);
    return {
        .timestamp = 8e8 + second,
        .memory = {.total = std::uint64_t(64) << 30,
                   .used = (std::uint64_t(40) << 30) + static_cast<std::uint64_t>(second) * 4096,
                   .wired = std::uint64_t(6) << 30,
                   .cached = std::uint64_t(9) << 30,
                   .appMemory = std::uint64_t(38) << 30},
        .chip = ChipReading{.cpuWatts = 20 * wave,
                            .gpuWatts = 30 * wave,
                            .aneWatts = wave,
                            .cpuActiveFraction = wave,
                            .gpuActiveFraction = wave,
                            .cpuActiveMHz = 3000 * wave,
                            .gpuDominantState = u"P12"_s,
                            .cpuCoreUtilizations = std::vector<double>(16, wave),
                            .packageTempC = 60}};
}

/// The minute that ends at that second.
std::vector<SystemMetrics> history(int end)
{
    std::vector<SystemMetrics> samples;
    for (int second = end - 59; second <= end; ++second)
        samples.push_back(sample(second));
    return samples;
}

std::vector<ProcessRow> processes(int second)
{
    std::vector<ProcessRow> rows;
    for (int i = 0; i < 20; ++i) {
        rows.push_back({i, u"process-%1"_s.arg(i),
                        static_cast<std::uint64_t>(20 - i) * (100 << 20)
                            + static_cast<std::uint64_t>(second) * (1 << 20)});
    }
    return rows;
}

/// Does all pending repaints, as the event loop would.
void paintNow()
{
    QCoreApplication::sendPostedEvents();
    QCoreApplication::processEvents();
}

void clearWindow(benchmark::State &state)
{
    QImage image(windowSize, QImage::Format_RGB32);
    for (auto _ : state) {
        image.fill(Qt::black);
        benchmark::DoNotOptimize(image.bits());
    }
}
BENCHMARK(clearWindow);

/// One tick: new samples every second, new processes every third second.
void tick(benchmark::State &state)
{
    MainWindow window(nullptr, ChipInfo{.name = u"Chip"_s, .aneMaxW = 8});
    window.resize(windowSize);
    window.QWidget::show();
    paintNow();
    int second = 60;
    for (auto _ : state) {
        state.PauseTiming();
        const std::vector<SystemMetrics> samples = history(++second);
        state.ResumeTiming();
        window.show(samples.back(), samples);
        if (second % 3 == 0)
            window.showProcesses(processes(second));
        paintNow();
    }
}
BENCHMARK(tick)->Unit(benchmark::kMicrosecond);

/// A day of means of the same wave.
Timeline dayOfMeans()
{
    Timeline timeline;
    for (int second = 0; second <= 86'460; ++second)
        timeline.add(sample(second), second);
    return timeline;
}

/// A change of the window of time, from a minute to a day and back.
void changeOfWindow(benchmark::State &state)
{
    MainWindow window(nullptr, ChipInfo{.name = u"Chip"_s, .aneMaxW = 8});
    window.resize(windowSize);
    window.QWidget::show();
    paintNow();
    const Timeline timeline = dayOfMeans();
    const std::vector<SystemMetrics> samples = history(86'460);
    bool isDay = false;
    for (auto _ : state) {
        isDay = !isDay;
        const auto means = timeline.window(86'400, samples.back().timestamp);
        window.show(samples.back(), isDay ? ChartHistory(samples, means) : ChartHistory(samples));
        paintNow();
    }
}
BENCHMARK(changeOfWindow)->Unit(benchmark::kMicrosecond);

/// A tick without a new point in the charts of a day.
void tickOfADay(benchmark::State &state)
{
    MainWindow window(nullptr, ChipInfo{.name = u"Chip"_s, .aneMaxW = 8});
    window.resize(windowSize);
    window.QWidget::show();
    paintNow();
    const Timeline timeline = dayOfMeans();
    int second = 60;
    for (auto _ : state) {
        state.PauseTiming();
        const std::vector<SystemMetrics> samples = history(++second);
        state.ResumeTiming();
        window.showEnergy(timeline.energy(samples.back().timestamp));
        window.show(samples.back(), {samples, timeline.window(86'400, 8e8 + 86'460)});
        if (second % 3 == 0)
            window.showProcesses(processes(second));
        paintNow();
    }
}
BENCHMARK(tickOfADay)->Unit(benchmark::kMicrosecond);

/// The same while the window is hidden.
void hiddenTick(benchmark::State &state)
{
    MainWindow window(nullptr, ChipInfo{.name = u"Chip"_s, .aneMaxW = 8});
    window.resize(windowSize);
    const std::vector<SystemMetrics> samples = history(60);
    for (auto _ : state) {
        window.show(samples.back(), samples);
        paintNow();
    }
}
BENCHMARK(hiddenTick)->Unit(benchmark::kMicrosecond);

/// A repaint of the whole window.
void repaint(benchmark::State &state)
{
    MainWindow window(nullptr, ChipInfo{.name = u"Chip"_s, .aneMaxW = 8});
    window.resize(windowSize);
    window.QWidget::show();
    window.show(sample(60), history(60));
    window.showProcesses(processes(60));
    paintNow();
    for (auto _ : state)
        window.repaint();
}
BENCHMARK(repaint)->Unit(benchmark::kMicrosecond);

/// A step of resizing, with all cached pictures rendered again.
void resize(benchmark::State &state)
{
    MainWindow window(nullptr, ChipInfo{.name = u"Chip"_s, .aneMaxW = 8});
    window.resize(windowSize);
    window.QWidget::show();
    window.show(sample(60), history(60));
    window.showProcesses(processes(60));
    paintNow();
    int step = 0;
    for (auto _ : state) {
        window.resize(windowSize + QSize(++step % 2, 0));
        paintNow();
    }
}
BENCHMARK(resize)->Unit(benchmark::kMicrosecond);

/// New data for one part of the window, and its repaint.
template <typename Part, typename Show>
void showPart(benchmark::State &state, Part &part, const QSize &size, Show show)
{
    part.resize(size);
    part.QWidget::show();
    paintNow();
    int second = 60;
    for (auto _ : state) {
        state.PauseTiming();
        const std::vector<SystemMetrics> samples = history(++second);
        state.ResumeTiming();
        show(part, samples, second);
        paintNow();
    }
}

const auto showSamples = [](auto &card, const std::vector<SystemMetrics> &samples, int) {
    card.show(samples.back(), samples);
};

void memoryCard(benchmark::State &state)
{
    MemoryCard card;
    showPart(state, card, {617, 262}, showSamples);
}
BENCHMARK(memoryCard)->Unit(benchmark::kMicrosecond);

void powerCard(benchmark::State &state)
{
    PowerCard card;
    showPart(state, card, {617, 262}, showSamples);
}
BENCHMARK(powerCard)->Unit(benchmark::kMicrosecond);

void cpuCard(benchmark::State &state)
{
    UtilizationCard card(ComputeUnit::cpu);
    showPart(state, card, {406, 226}, showSamples);
}
BENCHMARK(cpuCard)->Unit(benchmark::kMicrosecond);

void gpuCard(benchmark::State &state)
{
    UtilizationCard card(ComputeUnit::gpu);
    showPart(state, card, {406, 226}, showSamples);
}
BENCHMARK(gpuCard)->Unit(benchmark::kMicrosecond);

void header(benchmark::State &state)
{
    DashboardHeader part(u"Chip"_s, nullptr);
    showPart(state, part, {1216, 36},
             [](DashboardHeader &shown, const std::vector<SystemMetrics> &samples, int) {
                 shown.show(samples.back());
             });
}
BENCHMARK(header)->Unit(benchmark::kMicrosecond);

void workloadsCard(benchmark::State &state)
{
    AIWorkloadsCard card;
    showPart(state, card, {617, 304},
             [](AIWorkloadsCard &shown, const std::vector<SystemMetrics> &, int second) {
                 shown.show({{.id = 1,
                              .pid = 1,
                              .processName = u"llama-server"_s,
                              .framework = AIFramework::llamaCpp,
                              .model = u"model-8b"_s,
                              .memory = static_cast<std::uint64_t>(second) << 30}});
             });
}
BENCHMARK(workloadsCard)->Unit(benchmark::kMicrosecond);

void processCard(benchmark::State &state)
{
    ProcessCard card;
    showPart(state, card, {617, 304},
             [](ProcessCard &shown, const std::vector<SystemMetrics> &, int second) {
                 shown.show(processes(second), std::uint64_t(64) << 30);
             });
}
BENCHMARK(processCard)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
