#include "figures/EnergyTotals.h"

#include <QTest>

using namespace corvane;

namespace {

Figures figuresAt(double time, std::optional<double> cpuWatts, std::optional<double> gpuWatts = {})
{
    Figures figures;
    figures.unixTime = time;
    figures.cpu.watts = cpuWatts;
    figures.gpus = {{.watts = gpuWatts}};
    return figures;
}

} // namespace

class TestEnergyTotals : public QObject {
    Q_OBJECT

private slots:
    void sumsWattsOverTime();
    void hasNoSumOfWhatWasNeverKnown();
    void skipsTheTimeInWhichNothingWasKnown();
    void countsNeitherSleepNorAClockThatRanBackwards();
};

void TestEnergyTotals::sumsWattsOverTime()
{
    EnergyTotals totals;
    totals.add(figuresAt(100, 5, 100)); // The first has no time before it.
    QCOMPARE(totals.cpuJoules(), std::optional(0.0));
    totals.add(figuresAt(101, 10, 200));
    totals.add(figuresAt(101.5, 20, 100));
    QCOMPARE(totals.cpuJoules(), std::optional(20.0));
    QCOMPARE(totals.gpuJoules(), std::optional(250.0));
}

void TestEnergyTotals::hasNoSumOfWhatWasNeverKnown()
{
    EnergyTotals totals;
    totals.add(figuresAt(0, 5));
    totals.add(figuresAt(1, 5));
    QVERIFY(!totals.gpuJoules());
    QVERIFY(!totals.npuJoules());
}

void TestEnergyTotals::skipsTheTimeInWhichNothingWasKnown()
{
    EnergyTotals totals;
    totals.add(figuresAt(0, 5));
    totals.add(figuresAt(1, {}));
    totals.add(figuresAt(2, 7));
    QCOMPARE(totals.cpuJoules(), std::optional(7.0));
}

void TestEnergyTotals::countsNeitherSleepNorAClockThatRanBackwards()
{
    EnergyTotals totals;
    totals.add(figuresAt(0, 5));
    totals.add(figuresAt(3600, 5));
    QCOMPARE(totals.cpuJoules(), std::optional(0.0));
    totals.add(figuresAt(10, 5));
    totals.add(figuresAt(11, 5));
    QCOMPARE(totals.cpuJoules(), std::optional(5.0));
}

QTEST_GUILESS_MAIN(TestEnergyTotals)
#include "tst_EnergyTotals.moc"
