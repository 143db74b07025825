#include "timeline/Energy.h"
#include "timeline/Measure.h"

#include <QTest>

#include <limits>

using namespace corvane;

namespace {

using Value = std::optional<double>;

std::shared_ptr<const MachineCoverage> coverage(const MachineCoverage &machine)
{
    return std::make_shared<const MachineCoverage>(machine);
}

SystemMetrics wholeChip()
{
    return {.memory = {.total = 200, .used = 50},
            .chip = ChipReading{.cpuWatts = 3,
                                .gpuWatts = 5,
                                .aneWatts = 0.5,
                                .cpuActiveFraction = 0.25,
                                .gpuActiveFraction = 0.75}};
}

/// A package whose parts but the rest are known, and two cards, one asleep.
SystemMetrics cardMachine()
{
    const MachineCoverage machine{.isWhole = false,
                                  .cpuWatts = Coverage::known,
                                  .packageWatts = Coverage::known,
                                  .npuLoad = Coverage::known,
                                  .npuWatts = Coverage::known,
                                  .gpus = {{.device = QStringLiteral("0"),
                                            .name = QStringLiteral("A"),
                                            .load = Coverage::known,
                                            .watts = Coverage::known,
                                            .memory = Coverage::known,
                                            .memoryTotal = 1000},
                                           {.device = QStringLiteral("1"),
                                            .name = QStringLiteral("B"),
                                            .load = Coverage::asleep,
                                            .watts = Coverage::asleep,
                                            .memory = Coverage::asleep}}};
    ChipReading chip{.cpuWatts = 10, .cpuActiveFraction = 0.5};
    chip.packageWatts = 17;
    chip.npu = NPUMetrics{.activeFraction = 0.125, .watts = 2.0};
    chip.gpus = {
        {.device = QStringLiteral("0"), .activeFraction = 0.4, .watts = 100.0, .memoryUsed = 250}};
    chip.coverage = coverage(machine);
    return {.memory = {.total = 100, .used = 10}, .chip = chip};
}

Value of(const Measures &measures, Measure measure)
{
    return measures[indexOf(measure)];
}

} // namespace

class TestMeasure : public QObject {
    Q_OBJECT

private slots:
    void ofAWholeChip();
    void deniedIsAbsent();
    void nothingIsKnownOfAnAbsentReading();
    void ofAMachineWithCards();
    void aSleepingCardIsAbsent();
    void ofASampleOfTheHistoryFile();
    void numbersThatAreNotFiniteAreAbsent();
    void energyIsCountedWhereWattsAreKnown();
    void gapsAreNotMeasured_data();
    void gapsAreNotMeasured();
};

void TestMeasure::ofAWholeChip()
{
    const SystemMetrics sample = wholeChip();
    const Measures measures = measuresOf(sample, coverageOf(sample));
    QCOMPARE(of(measures, Measure::memory), Value(25));
    QCOMPARE(of(measures, Measure::cpuLoad), Value(25));
    QCOMPARE(of(measures, Measure::gpuLoad), Value(75));
    QCOMPARE(of(measures, Measure::npuLoad), Value());
    QCOMPARE(of(measures, Measure::cpuWatts), Value(3));
    QCOMPARE(of(measures, Measure::npuWatts), Value(0.5));
    QCOMPARE(of(measures, Measure::restWatts), Value());
    QCOMPARE(of(measures, Measure::totalWatts), Value(8.5));
}

void TestMeasure::deniedIsAbsent()
{
    SystemMetrics sample = wholeChip();
    sample.chip->denied = {.cpuLoad = true, .gpuWatts = true};
    const Measures measures = measuresOf(sample, coverageOf(sample));
    QCOMPARE(of(measures, Measure::cpuLoad), Value());
    QCOMPARE(of(measures, Measure::gpuWatts), Value());
    QCOMPARE(of(measures, Measure::totalWatts), Value(3.5));

    SystemMetrics ofACard = cardMachine();
    ofACard.chip->denied.cpuLoad = true;
    QCOMPARE(of(measuresOf(ofACard, coverageOf(ofACard)), Measure::cpuLoad), Value());
}

void TestMeasure::nothingIsKnownOfAnAbsentReading()
{
    const SystemMetrics sample;
    for (const Value &value : measuresOf(sample, coverageOf(sample)))
        QVERIFY(!value); // Not even the memory, whose total is 0.
}

void TestMeasure::ofAMachineWithCards()
{
    const SystemMetrics sample = cardMachine();
    const Measures measures = measuresOf(sample, coverageOf(sample));
    QCOMPARE(of(measures, Measure::memory), Value(10));
    QCOMPARE(of(measures, Measure::cpuLoad), Value(50));
    QCOMPARE(of(measures, Measure::gpuLoad), Value(40));
    QCOMPARE(of(measures, Measure::npuLoad), Value(12.5));
    QCOMPARE(of(measures, Measure::gpuMemory), Value(25));
    QCOMPARE(of(measures, Measure::cpuWatts), Value(10));
    QCOMPARE(of(measures, Measure::gpuWatts), Value(100));
    QCOMPARE(of(measures, Measure::restWatts), Value(5)); // 17 − 10 − 2.
    QCOMPARE(of(measures, Measure::totalWatts), Value(117));
}

void TestMeasure::aSleepingCardIsAbsent()
{
    const SystemMetrics sample = cardMachine();
    const Measures measures = measuresOf(sample, coverageOf(sample));
    QCOMPARE(of(measures, Measure::firstGPU), Value(40));
    QCOMPARE(of(measures, Measure::secondGPU), Value());
    QCOMPARE(of(measures, Measure::thirdGPU), Value());
}

/// It has no coverage of its own, and 0 stands for what was not known.
void TestMeasure::ofASampleOfTheHistoryFile()
{
    const MachineCoverage machine = coverageOf(cardMachine());
    SystemMetrics sample = wholeChip();
    sample.chip->gpuWatts = 0;
    const Measures measures = measuresOf(sample, machine);
    QCOMPARE(of(measures, Measure::cpuWatts), Value(3));
    QCOMPARE(of(measures, Measure::gpuWatts), Value());
    QCOMPARE(of(measures, Measure::gpuLoad), Value());
    QCOMPARE(of(measures, Measure::totalWatts), Value(3));
}

void TestMeasure::numbersThatAreNotFiniteAreAbsent()
{
    SystemMetrics sample = wholeChip();
    sample.chip->gpuWatts = std::numeric_limits<double>::quiet_NaN();
    sample.chip->cpuActiveFraction = std::numeric_limits<double>::infinity();
    const Measures measures = measuresOf(sample, coverageOf(sample));
    QCOMPARE(of(measures, Measure::gpuWatts), Value());
    QCOMPARE(of(measures, Measure::cpuLoad), Value());
    QCOMPARE(of(measures, Measure::totalWatts), Value(3.5));
}

void TestMeasure::energyIsCountedWhereWattsAreKnown()
{
    SystemMetrics sample = wholeChip();
    sample.chip->denied.aneWatts = true;
    const Energy energy = energyOf(measuresOf(sample, coverageOf(sample)), 2);
    QCOMPARE(energy, (Energy{.seconds = 2, .all = 16, .cpu = 6, .gpu = 10}));
    QCOMPARE(energyOf({}, 2), Energy()); // No time was measured either.
    QCOMPARE(energyOf(measuresOf(sample, coverageOf(sample)), 0), (Energy{.cpu = 0, .gpu = 0}));

    Energy sum = energy;
    sum += {.seconds = 1, .all = 1, .npu = 1};
    QCOMPARE(sum, (Energy{.seconds = 3, .all = 17, .cpu = 6, .gpu = 10, .npu = 1}));
}

void TestMeasure::gapsAreNotMeasured_data()
{
    QTest::addColumn<double>("now");
    QTest::addColumn<double>("seconds");
    QTest::newRow("a second") << 101.0 << 1.0;
    QTest::newRow("five seconds") << 105.0 << 5.0;
    QTest::newRow("more than five seconds") << 105.5 << 0.0;
    QTest::newRow("no time") << 100.0 << 0.0;
    QTest::newRow("a clock that runs backwards") << 99.0 << 0.0;
    QTest::newRow("no number") << std::numeric_limits<double>::quiet_NaN() << 0.0;
}

void TestMeasure::gapsAreNotMeasured()
{
    QFETCH(double, now);
    QTEST(measuredSeconds(100, now), "seconds");
}

QTEST_APPLESS_MAIN(TestMeasure)
#include "tst_Measure.moc"
