#include "records/MachineTotals.h"

#include <QTest>

#include <cmath>
#include <functional>
#include <limits>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

constexpr std::uint64_t gigabyte = std::uint64_t(1) << 30;
constexpr auto most = std::numeric_limits<std::uint64_t>::max();

/// A GPU of a machine, and what could be read of it.
struct GPU {
    GPUCoverage coverage = {};
    std::optional<GPUMetrics> metrics = {};
};

GPU card(const QString &device)
{
    return {{.device = device,
             .name = u"Card"_s,
             .load = Coverage::known,
             .watts = Coverage::known,
             .memory = Coverage::known,
             .memoryTotal = 24 * gigabyte},
            GPUMetrics{.activeFraction = 0.5,
                       .state = u"P2"_s,
                       .megahertz = 2610,
                       .watts = 200,
                       .tempC = 60,
                       .memoryUsed = 6 * gigabyte}};
}

GPU integrated()
{
    return {{.device = u"integrated"_s,
             .name = u"Graphics"_s,
             .integrated = true,
             .usesSystemMemory = true,
             .load = Coverage::known},
            GPUMetrics{.integrated = true, .activeFraction = 0.1, .megahertz = 450, .tempC = 40}};
}

GPU asleep(GPU gpu)
{
    gpu.coverage.load = gpu.coverage.watts = gpu.coverage.memory = Coverage::asleep;
    gpu.metrics.reset();
    return gpu;
}

GPU with(GPU gpu, const std::function<void(GPU &)> &change)
{
    change(gpu);
    return gpu;
}

SystemMetrics machineOf(const QList<GPU> &gpus)
{
    MachineCoverage coverage{.isWhole = false};
    ChipReading chip;
    for (const GPU &gpu : gpus) {
        coverage.gpus.push_back(gpu.coverage);
        if (!gpu.metrics)
            continue;
        chip.gpus.push_back(*gpu.metrics);
        chip.gpus.back().device = gpu.coverage.device;
    }
    chip.coverage = std::make_shared<const MachineCoverage>(std::move(coverage));
    return {.chip = std::move(chip)};
}

QString text(FigureState state)
{
    return QStringList{u"absent"_s, u"asleep"_s, u"unreadable"_s, u"known"_s}[int(state)];
}

QString text(std::optional<double> value)
{
    return value ? QString::number(*value) : u"none"_s;
}

/// "known 0.5 P2 2610, 200 W, 60 C".
QString loads(const SystemMetrics &sample)
{
    const GPULoadTotal load = gpuLoadTotal(sample);
    return text(load.state) + u' ' + QString::number(load.fraction) + u' '
        + load.performanceState.value_or(u"none"_s) + u' ' + text(load.megahertz)
        + (load.isStandIn ? u" stands in"_s : QString()) + u", "_s + text(gpuWatts(sample))
        + u" W, "_s + text(gpuTemperature(sample)) + u" C"_s;
}

/// "known cards 6 of 24".
QString memory(const SystemMetrics &sample)
{
    const GPUMemoryTotal total = gpuMemoryTotal(sample);
    return text(total.state) + (total.ofCards ? u" cards "_s : u" shared "_s)
        + (total.isLowerBound ? u"at least "_s : QString()) + QString::number(total.used / gigabyte)
        + u" of "_s + QString::number(total.total / gigabyte);
}

} // namespace

/// The GPUs of a machine taken together.
class TestMachineTotals : public QObject {
    Q_OBJECT

private slots:
    void takesTheGPUsThatCount_data();
    void takesTheGPUsThatCount();
    void isAbsentWithoutAReading();
};

void TestMachineTotals::takesTheGPUsThatCount_data()
{
    QTest::addColumn<SystemMetrics>("sample");
    QTest::addColumn<QString>("load");
    QTest::addColumn<QString>("memory");
    const auto row = [](const char *name, const QList<GPU> &gpus, const QString &load,
                        const QString &memory) {
        QTest::newRow(name) << machineOf(gpus) << load << memory;
    };
    const GPU first = card(u"a"_s);
    const GPU second = with(card(u"b"_s), [](GPU &gpu) {
        gpu.metrics->activeFraction = 0.1;
        gpu.metrics->watts = 20;
        gpu.metrics->tempC = 81;
        gpu.metrics->memoryUsed = gigabyte;
    });
    row("no GPU", {}, u"absent 0 none none, none W, none C"_s, u"absent shared 0 of 0"_s);
    row("one card", {first}, u"known 0.5 P2 2610, 200 W, 60 C"_s, u"known cards 6 of 24"_s);
    row("several: mean load, sums, highest temperature", {first, second},
        u"known 0.3 none none, 220 W, 81 C"_s, u"known cards 7 of 48"_s);
    row("an integrated GPU does not count beside a card", {integrated(), first},
        u"known 0.5 P2 2610, 200 W, 60 C"_s, u"known cards 6 of 24"_s);
    row("it stands in for the load of a card that sleeps", {integrated(), asleep(first)},
        u"known 0.1 none 450 stands in, none W, none C"_s, u"asleep cards 0 of 24"_s);
    row("one of two cards sleeps", {first, asleep(second)}, u"known 0.5 none none, 200 W, 60 C"_s,
        u"known cards 6 of 24"_s);
    row("all cards sleep", {asleep(first), asleep(second)}, u"asleep 0 none none, none W, none C"_s,
        u"asleep cards 0 of 48"_s);
    row("a card that cannot be read now", {with(first, [](GPU &gpu) { gpu.metrics.reset(); })},
        u"unreadable 0 none none, none W, none C"_s, u"unreadable cards 0 of 24"_s);
    row("an integrated GPU alone, without memory figures", {integrated()},
        u"known 0.1 none 450, none W, 40 C"_s, u"absent shared 0 of 0"_s);
    row("one whose memory is the machine's",
        {with(integrated(),
              [](GPU &gpu) {
                  gpu.coverage.memory = Coverage::known;
                  gpu.coverage.memoryTotal = 15 * gigabyte;
                  gpu.metrics->memoryUsed = 3 * gigabyte;
              })},
        u"known 0.1 none 450, none W, 40 C"_s, u"known shared 3 of 15"_s);
    row("memory whose total is not known",
        {with(first, [](GPU &gpu) { gpu.coverage.memoryTotal.reset(); })},
        u"known 0.5 P2 2610, 200 W, 60 C"_s, u"known cards 6 of 0"_s);
    row("a lower bound", {with(first, [](GPU &gpu) { gpu.metrics->memoryIsLowerBound = true; })},
        u"known 0.5 P2 2610, 200 W, 60 C"_s, u"known cards at least 6 of 24"_s);
    row("values that nobody could have measured",
        {with(first,
              [](GPU &gpu) {
                  gpu.metrics->activeFraction = std::nan("");
                  gpu.metrics->watts = std::numeric_limits<double>::infinity();
                  gpu.metrics->tempC = -std::numeric_limits<double>::infinity();
                  gpu.metrics->memoryUsed = most;
              }),
         second},
        u"known 0.1 none none, 20 W, 81 C"_s,
        u"known cards "_s + QString::number(most / gigabyte) + u" of 48"_s);
    row("a value that is read but not told",
        {with(first, [](GPU &gpu) { gpu.coverage.watts = Coverage::unpublished; })},
        u"known 0.5 P2 2610, none W, 60 C"_s, u"known cards 6 of 24"_s);
}

void TestMachineTotals::takesTheGPUsThatCount()
{
    QFETCH(SystemMetrics, sample);
    QTEST(loads(sample), "load");
    QTEST(memory(sample), "memory");
}

void TestMachineTotals::isAbsentWithoutAReading()
{
    QCOMPARE(loads(SystemMetrics()), u"absent 0 none none, none W, none C"_s);
    QCOMPARE(memory(SystemMetrics()), u"absent shared 0 of 0"_s);
    QVERIFY(!metricsOf(card(u"a"_s).coverage, std::nullopt));
    QVERIFY(!metricsOf(card(u"a"_s).coverage, ChipReading()));
}

QTEST_GUILESS_MAIN(TestMachineTotals)
#include "tst_MachineTotals.moc"
