#include "figures/Figures.h"

#include "figures/KnownMachines.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestFigures : public QObject {
    Q_OBJECT

private slots:
    void hasTheTimeInUnixSeconds();
    void hasNothingOfWhatIsNotKnown();
    void hasAllOfAWholeChip();
    void leavesOutWhatAWholeChipDenies();
    void hasWhatACardMachineTells();
    void keepsNameAndMemoryOfASleepingCard();
    void leavesOutWhatIsLocked();
    void hasAnNPUWhereThereIsOne();
    void addsUpTheKnownWatts();
};

void TestFigures::hasTheTimeInUnixSeconds()
{
    QCOMPARE(figuresOf({.timestamp = 1.5}, {}).unixTime, 978307201.5);
}

void TestFigures::hasNothingOfWhatIsNotKnown()
{
    const Figures figures = figuresOf({}, u"Chip"_s);
    QVERIFY(!figures.memory && !figures.cpu.busyRatio && !figures.cpu.watts && !figures.npu);
    QVERIFY(figures.gpus.empty());
    QVERIFY(!knownWatts(figures));
}

void TestFigures::hasAllOfAWholeChip()
{
    const Figures figures = figuresOf(wholeChip(), u"Chip"_s);
    QCOMPARE(figures.cpu.busyRatio, std::optional(0.5));
    QCOMPARE(figures.gpus.size(), std::size_t(1));
    QCOMPARE(figures.gpus[0].name, u"Chip"_s);
    QCOMPARE(figures.gpus[0].busyRatio, std::optional(0.75));
    QCOMPARE(figures.gpus[0].state, std::optional(u"P12"_s));
    QVERIFY(figures.npu);
    QCOMPARE(figures.npu->watts, std::optional(0.0)); // A true zero.
    QVERIFY(!figures.cpu.hertz && !figures.cpu.celsius);
}

void TestFigures::leavesOutWhatAWholeChipDenies()
{
    SystemMetrics sample = wholeChip();
    sample.chip->denied = {.cpuLoad = true, .cpuWatts = true, .aneWatts = true};
    const Figures figures = figuresOf(sample, {});
    QVERIFY(!figures.cpu.busyRatio && !figures.cpu.watts && !figures.npu->watts);
    QCOMPARE(knownWatts(figures), std::optional(30.0));
}

void TestFigures::hasWhatACardMachineTells()
{
    const Figures figures = figuresOf(cardMachine(), {});
    QCOMPARE(figures.cpu.hertz, std::optional(4e9));
    const GPUFigures &gpu = figures.gpus[0];
    QCOMPARE(gpu.busyRatio, std::optional(0.97));
    QCOMPARE(gpu.hertz, std::optional(2.61e9));
    QCOMPARE(gpu.memoryUsed, std::optional<std::uint64_t>(21'000'000'000));
    QCOMPARE(gpu.limit, std::optional(GPULimit::power));
    QVERIFY(!gpu.isAsleep);
}

void TestFigures::keepsNameAndMemoryOfASleepingCard()
{
    const Figures figures = figuresOf(cardMachine(), {});
    const GPUFigures &gpu = figures.gpus[1];
    QVERIFY(gpu.isAsleep);
    QCOMPARE(gpu.name, u"Card B"_s);
    QCOMPARE(gpu.memoryTotal, std::optional<std::uint64_t>(8'000'000'000));
    QVERIFY(!gpu.busyRatio && !gpu.watts && !gpu.memoryUsed);
}

void TestFigures::leavesOutWhatIsLocked()
{
    const Figures figures = figuresOf(cardMachine(), {});
    QVERIFY(!figures.cpu.watts && !figures.npu);
    QCOMPARE(knownWatts(figures), std::optional(318.0));
}

void TestFigures::hasAnNPUWhereThereIsOne()
{
    SystemMetrics sample = cardMachine();
    MachineCoverage coverage = *sample.chip->coverage;
    coverage.npuLoad = Coverage::known;
    sample.chip->coverage = std::make_shared<const MachineCoverage>(coverage);
    sample.chip->npu = NPUMetrics{.activeFraction = 0.5, .megahertz = 1400};
    const Figures figures = figuresOf(sample, {});
    QVERIFY(figures.npu);
    QCOMPARE(figures.npu->busyRatio, std::optional(0.5));
    QCOMPARE(figures.npu->hertz, std::optional(1.4e9));
    QVERIFY(!figures.npu->watts);
}

void TestFigures::addsUpTheKnownWatts()
{
    QCOMPARE(knownWatts(figuresOf(wholeChip(), {})), std::optional(40.0));
    QCOMPARE(gpuWatts(figuresOf(cardMachine(), {})), std::optional(318.0));
}

QTEST_GUILESS_MAIN(TestFigures)
#include "tst_Figures.moc"
