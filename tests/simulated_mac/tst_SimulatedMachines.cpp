// The channel lists, tables and sensors of four machines through everything that makes a
// reading of them. The expected values are worked out here from what each channel gains in a
// second; residencies are in tenths of millions of 24 MHz ticks, so that a second has 240 of them.

#include "chip/ChipSource.h"
#include "memory/MemorySampler.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace corvane;
using namespace corvane::simulated;
using namespace Qt::StringLiterals;

class TestSimulatedMachines : public QObject {
    Q_OBJECT

private slots:
    void readsTheBaseChip();
    void readsTheMax();
    void readsTheUltra();
    void readsTheProOfTheFifth();
    void readsChannelsOfANewerSystem();
    void steadiesEnergyOfBatches_data();
    void steadiesEnergyOfBatches();
    void deniesFrozenCounters();
    void keepsTheGroupsThatTheSystemAccepts_data();
    void keepsTheGroupsThatTheSystemAccepts();
    void startsWithoutChipWhereThereIsNoLibrary();

private:
    static ChipSource open(const Machine &machine);
    static ChipReading readingAfter(const ChipSource &chip, double seconds);
    static void compareShares(const ChipReading &reading,
                              const std::vector<std::pair<QString, double>> &expected);
};

ChipSource TestSimulatedMachines::open(const Machine &machine)
{
    mac().boot(machine);
    return openChipSource([] { return mac().clock(); });
}

ChipReading TestSimulatedMachines::readingAfter(const ChipSource &chip, double seconds)
{
    mac().advance(seconds);
    return chip().value();
}

void TestSimulatedMachines::compareShares(const ChipReading &reading,
                                          const std::vector<std::pair<QString, double>> &expected)
{
    QCOMPARE(reading.gpuStateResidency.size(), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index) {
        QCOMPARE(reading.gpuStateResidency[index].state, expected[index].first);
        QCOMPARE(reading.gpuStateResidency[index].fraction, expected[index].second);
    }
}

void TestSimulatedMachines::readsTheBaseChip()
{
    const ChipSource chip = open(baseM1());
    QVERIFY(chip);
    for (const double seconds : {1.0, 2.0, 0.5}) {
        const ChipReading reading = readingAfter(chip, seconds);
        QCOMPARE(reading.cpuWatts, 2.5); // 2500 mJ a second; the clusters' own totals do not count.
        QCOMPARE(reading.gpuWatts, 0.64); // 640,000,000 nJ; "GPU0" and "GPU SRAM0" do not count.
        QCOMPARE(reading.aneWatts, 0.12);

        // ECPU 120 idle, PCPU 180 idle, ECPM and PCPM never: 300 of 4 × 240.
        QCOMPARE(reading.cpuActiveFraction, 1 - 300.0 / 960);
        // ECPU 60 at 972, 30 at 1332, 30 at 2064; PCPU 20 at 600, 10 at 1500, 30 at 3204:
        // 58,320 + 39,960 + 61,920 + 12,000 + 15,000 + 96,120 = 283,320 over 180.
        QCOMPARE(reading.cpuActiveMHz, 1574.0);

        // GPUPH 120 OFF; the boost controller and the limiter do not count.
        QCOMPARE(reading.gpuActiveFraction, 1 - 120.0 / 240);
        QCOMPARE(*reading.gpuDominantState, u"P1"_s);
        compareShares(reading,
                      {{u"P1"_s, 60.0 / 120}, {u"P3"_s, 40.0 / 120}, {u"P5"_s, 20.0 / 120}});

        // eACC 40, 42; pACC 45 … 51 (336); "PMU TP3w" 37.1: 455.1 over 10.
        QCOMPARE(*reading.cpuTempC, 45.51);
        QCOMPARE(*reading.gpuTempC, 27.3); // 27.0 and 27.6.
        QCOMPARE(*reading.aneTempC, 30.0);
        // "SOC MTR" 31; "PMGR SOC Die" 3 × 29; "PMU tdie" 285.5: 403.5 over 12.
        QCOMPARE(*reading.packageTempC, 33.625);
        QCOMPARE(reading.cpuCoreUtilizations.size(), 8U);
    }
    QCOMPARE(readingAfter(chip, 1).cpuCoreUtilizations,
             (std::vector<double>{0.5, 1 - 0.55, 1 - 0.8, 0.5, 0, 0.75, 0, 1}));
}

void TestSimulatedMachines::readsTheMax()
{
    const ChipSource chip = open(maxM4());
    QVERIFY(chip);
    const ChipReading reading = readingAfter(chip, 1);
    QCOMPARE(reading.cpuWatts, 24.0);
    QCOMPARE(reading.gpuWatts, 18.5);
    QCOMPARE(reading.aneWatts, 1.5);

    // DOWN and IDLE: ECPU 120, PCPU 120, PCPU1 210, ECPM 20, PCPM 40, PCPM1 160 and PCPM1_IDLE
    // 160; NON_IDLE is not idle. 830 of 9 × 240.
    QCOMPARE(reading.cpuActiveFraction, 1 - 830.0 / 2160);
    // The tables are in kHz. ECPU 60 at 1020, 40 at 2112, 20 at 2592; PCPU 40 each at 1260, 3624
    // and 4512; PCPU1 30 at 4512: 197,520 + 375,840 + 135,360 = 708,720 over 270.
    QCOMPARE(reading.cpuActiveMHz, 708'720.0 / 270);

    QCOMPARE(reading.gpuActiveFraction, 1 - 24.0 / 240);
    QCOMPARE(*reading.gpuDominantState, u"P12"_s);
    compareShares(reading, {{u"P1"_s, 36.0 / 216}, {u"P8"_s, 60.0 / 216}, {u"P12"_s, 120.0 / 216}});

    // Names repeat and the later value counts: TP 70 … 75, tdie 60 … 70.
    QCOMPARE(*reading.cpuTempC, 72.5);
    QCOMPARE(*reading.packageTempC, 65.0);
    QVERIFY(!reading.gpuTempC);
    QVERIFY(!reading.aneTempC);
    QCOMPARE(reading.cpuCoreUtilizations, std::vector<double>(16, 0.0)); // None before the first.
    QCOMPARE(readingAfter(chip, 1).cpuCoreUtilizations, std::vector<double>(16, 0.4));
}

void TestSimulatedMachines::readsTheUltra()
{
    const ChipSource chip = open(ultraM2());
    QVERIFY(chip);
    const ChipReading reading = readingAfter(chip, 1);
    QCOMPARE(reading.cpuWatts, 18.2); // 15,000 mJ of one die and 3,200 of the other.
    QCOMPARE(reading.gpuWatts, 0.27);
    QCOMPARE(reading.aneWatts, 0.15); // "ANE0_0" and "ANE0_1".

    // Idle: first die ECPU 60, PCPU 120, PCPU1 240, PCPM1 120; second die 5 × 240 and PCPU 200:
    // 1940 of 12 × 240.
    QCOMPARE(reading.cpuActiveFraction, 1 - 1940.0 / 2880);
    // ECPU 60 each at 912, 1752 and 2424; PCPU 60 each at 702 and 3504; the other die's PCPU 40 at
    // 3504: 305,280 + 252,360 + 140,160 = 697,800 over 340.
    QCOMPARE(reading.cpuActiveMHz, 697'800.0 / 340);

    QCOMPARE(reading.gpuActiveFraction, 1 - 204.0 / 240);
    QCOMPARE(*reading.gpuDominantState, u"P5"_s);
    compareShares(reading, {{u"P1"_s, 6.0 / 36}, {u"P5"_s, 30.0 / 36}});

    QCOMPARE(*reading.cpuTempC, 60.0); // The last "PMU TP0s" 59.6, "PMU TP1s" 60.4.
    QCOMPARE(*reading.packageTempC, 49.0);
    QVERIFY(!reading.gpuTempC);
    QVERIFY(!reading.aneTempC);
    QCOMPARE(reading.cpuCoreUtilizations.size(), 24U);
    QCOMPARE(MemorySampler::sample().pressure, MemoryPressure::warning);
}

void TestSimulatedMachines::readsTheProOfTheFifth()
{
    const ChipSource chip = open(proM5());
    QVERIFY(chip);
    ChipReading reading = readingAfter(chip, 1);
    QVERIFY(reading.denied.cpuWatts); // No batch was published yet.
    QCOMPARE(reading.gpuWatts, 9.0);
    for (int tick = 0; tick < 8; ++tick)
        reading = readingAfter(chip, 1);
    QVERIFY(!reading.denied.anyWatts());
    QVERIFY(std::abs(reading.cpuWatts - 12) < 2);
    QVERIFY(std::abs(reading.aneWatts - 0.8) < 0.2);

    // Idle: MCPU0 120, MCPU1 180, PCPU 180, and none of the three others: 480 of 6 × 240.
    QCOMPARE(reading.cpuActiveFraction, 1 - 480.0 / 1440);
    // MCPU0 60 each at 1344 and 4380, MCPU1 60 at 1344, by table 22; PCPU 60 at 4608, by table 5:
    // 343,440 + 80,640 + 276,480 = 700,560 over 240.
    QCOMPARE(reading.cpuActiveMHz, 2919.0);
    QCOMPARE(reading.gpuActiveFraction, 1 - 180.0 / 240);
    QCOMPARE(*reading.gpuDominantState, u"P1"_s);
    compareShares(reading, {{u"P1"_s, 40.0 / 60}, {u"P6"_s, 20.0 / 60}});
    QCOMPARE(*reading.cpuTempC, 52.0);
    QCOMPARE(*reading.packageTempC, 45.0);
    QCOMPARE(reading.cpuCoreUtilizations, std::vector<double>(18, 0.25));
}

void TestSimulatedMachines::readsChannelsOfANewerSystem()
{
    // macOS 27 puts the die before the names of a chip that had none.
    Machine machine = baseM1();
    for (Channel &channel : machine.channels) {
        if (channel.name == "CPU Energy" || channel.group == "CPU Stats")
            channel.name = "DIE0 " + channel.name;
    }
    const ChipReading reading = readingAfter(open(machine), 1);
    QCOMPARE(reading.cpuWatts, 2.5);
    QCOMPARE(reading.cpuActiveFraction, 1 - 300.0 / 960);
    QCOMPARE(reading.cpuActiveMHz, 1574.0);
}

void TestSimulatedMachines::steadiesEnergyOfBatches_data()
{
    QTest::addColumn<double>("every");
    for (const double every : {0.75, 1.0, 1.25, 1.32, 2.03, 2.23, 2.3})
        QTest::addRow("published every %.2f s", every) << every;
}

void TestSimulatedMachines::steadiesEnergyOfBatches()
{
    QFETCH(double, every);
    Machine machine = baseM1();
    for (Channel &channel : machine.channels)
        channel.publishedEvery = channel.unit == "mJ" ? every : 0;
    const ChipSource chip = open(machine);
    constexpr int ticks = 200;
    constexpr int settling = 8;
    double joules = 0;
    for (int tick = 0; tick < ticks; ++tick) {
        const ChipReading reading = readingAfter(chip, 1);
        QCOMPARE(reading.gpuWatts, 0.64); // In nanojoules, published at once.
        if (tick < settling)
            continue;
        QVERIFY(!reading.denied.anyWatts());
        // One tick can hold two batches, and a window of five seconds can miss a part of one.
        QVERIFY2(reading.cpuWatts > 0.7 * 2.5 && reading.cpuWatts < 1.6 * 2.5,
                 qPrintable(QString::number(reading.cpuWatts)));
        joules += reading.cpuWatts;
    }
    QVERIFY(std::abs(joules / (ticks - settling) / 2.5 - 1) < 0.05);
}

void TestSimulatedMachines::deniesFrozenCounters()
{
    const ChipSource chip = open(baseM1());
    readingAfter(chip, 1);
    readingAfter(chip, 1);
    for (Channel &channel : mac().machine.channels) {
        if (channel.unit == "mJ")
            channel.publishedEvery = std::numeric_limits<double>::infinity();
    }
    for (int tick = 0; tick < 5; ++tick) {
        const ChipReading held = readingAfter(chip, 1);
        QCOMPARE(held.cpuWatts, 2.5);
        QVERIFY(!held.denied.anyWatts());
    }
    for (int tick = 0; tick < 60; ++tick) {
        const ChipReading denied = readingAfter(chip, 1);
        QVERIFY(denied.denied.cpuWatts && denied.denied.aneWatts && !denied.denied.gpuWatts);
        QCOMPARE(denied.gpuWatts, 0.64);
        QCOMPARE(denied.cpuActiveFraction, 1 - 300.0 / 960);
    }
}

void TestSimulatedMachines::keepsTheGroupsThatTheSystemAccepts_data()
{
    QTest::addColumn<QByteArray>("refused");
    QTest::addColumn<double>("cpuWatts");
    QTest::addColumn<bool>("hasWatts");
    QTest::addColumn<bool>("gpuIsDenied");
    QTest::addColumn<bool>("cpuIsDenied");
    QTest::addColumn<double>("gpuActive");
    QTest::addColumn<double>("cpuActive");
    constexpr double cpuActive = 1 - 300.0 / 960;
    QTest::newRow("no energy") << QByteArray("Energy Model") << 0.0 << false << false << false
                               << 0.5 << cpuActive;
    QTest::newRow("no GPU") << QByteArray("GPU Stats") << 2.5 << true << true << false << 0.0
                            << cpuActive;
    QTest::newRow("no CPU") << QByteArray("CPU Stats") << 2.5 << true << false << true << 0.5
                            << 0.0;
}

void TestSimulatedMachines::keepsTheGroupsThatTheSystemAccepts()
{
    QFETCH(QByteArray, refused);
    Machine machine = baseM1();
    machine.refusedGroups = {refused.toStdString()};
    const ChipSource chip = open(machine);
    QVERIFY(chip);
    const ChipReading reading = readingAfter(chip, 1);
    QTEST(reading.cpuWatts, "cpuWatts");
    QTEST(!reading.denied.anyWatts(), "hasWatts");
    QTEST(reading.denied.gpuLoad, "gpuIsDenied");
    QTEST(reading.denied.cpuLoad, "cpuIsDenied");
    QTEST(reading.gpuActiveFraction, "gpuActive");
    QTEST(reading.cpuActiveFraction, "cpuActive");

    machine.refusedGroups = {"Energy Model", "GPU Stats", "CPU Stats"};
    QVERIFY(!open(machine));
}

void TestSimulatedMachines::startsWithoutChipWhereThereIsNoLibrary()
{
    Machine machine = baseM1();
    machine.hasReportingFramework = false;
    machine.hasReportingLibrary = false;
    QVERIFY(!open(machine));
    // A virtual machine has the library, but no channel and no power manager.
    Machine virtualMachine = baseM1();
    virtualMachine.channels.clear();
    virtualMachine.hasPowerManager = false;
    QVERIFY(!open(virtualMachine));
}

QTEST_APPLESS_MAIN(TestSimulatedMachines)
#include "tst_SimulatedMachines.moc"
