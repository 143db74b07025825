// What is kept beyond a minute: the share of a tick, and of a start with a full file of minutes, as
// a ratio to reading the file at once.

#include "Ratio.h"
#include "history/HistoryStore.h"

#include <QCoreApplication>
#include <QFile>
#include <QTemporaryDir>

#include <chrono>
#include <cmath>
#include <cstdlib>

using namespace corvane;

namespace {

SystemMetrics sample(double time)
{
    const double wave = 0.5 + 0.3 * std::sin(time / 50) + 0.1 * std::sin(time * 2.9);
    return {.timestamp = time,
            .memory = {.total = std::uint64_t(64) << 30, .used = std::uint64_t(40) << 30},
            .chip = ChipReading{.cpuWatts = 20 * wave,
                                .gpuWatts = 30 * wave,
                                .aneWatts = wave,
                                .cpuActiveFraction = wave,
                                .gpuActiveFraction = wave}};
}

constexpr double start = 8e8 - 20;

/// Lets a timeline see that many seconds.
std::vector<MinuteRecord> minutes(Timeline &timeline, int seconds)
{
    std::vector<MinuteRecord> ended;
    for (double time = start; time < start + seconds; ++time) {
        if (const auto minute = timeline.add(sample(time), time))
            ended.push_back(*minute);
    }
    return ended;
}

/// What a tick costs in addition, a sixtieth of the end of a minute included.
void add(benchmark::State &state)
{
    Timeline timeline;
    minutes(timeline, 86'400);
    double time = start + 86'400;
    for (auto _ : state) {
        benchmark::DoNotOptimize(timeline.add(sample(time), time));
        ++time;
    }
}
BENCHMARK(add);

/// What a view that is open asks for with each sample.
void energy(benchmark::State &state)
{
    Timeline timeline;
    minutes(timeline, 7 * 86'400);
    for (auto _ : state)
        benchmark::DoNotOptimize(timeline.energy(start + 7 * 86'400));
}
BENCHMARK(energy)->Unit(benchmark::kMicrosecond);

/// Reads a week of minutes and takes them up, as each start does.
void startWithAWeek(benchmark::State &state)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("minutes.jsonl"));
    {
        Timeline timeline;
        HistoryStore store(folder.path());
        store.loadLast(1);
        QFile file(path);
        if (!file.open(QIODevice::Append))
            std::abort();
        for (const MinuteRecord &minute : minutes(timeline, (7 * 24 * 60 + 1) * 60))
            file.write(*minute.toLine() + '\n');
    }
    const double now = start + 7 * 86'400;
    HistoryStore store(folder.path());
    compare(
        state,
        [&] {
            const auto loaded = store.startLoadMinutes(now)->take(std::chrono::minutes(1));
            if (loaded->means.size() < 1'440)
                std::abort();
            Timeline fresh;
            fresh.add(sample(now), now);
            benchmark::DoNotOptimize(fresh.add(*loaded, {}));
        },
        [&path] {
            QFile file(path);
            if (file.open(QIODevice::ReadOnly))
                benchmark::DoNotOptimize(file.readAll());
        },
        processSeconds);
    state.counters["megabytes"] = static_cast<double>(QFile(path).size()) / 1e6;
}
BENCHMARK(startWithAWeek)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
