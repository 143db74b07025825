#include "chip/ChipSource.h"
#include "memory/MemorySampler.h"
#include "simulated_mac/LivelyLoad.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

class TestLivelyLoad : public QObject {
    Q_OBJECT

private slots:
    void isBelievable_data();
    void isBelievable();
    void restsWorksAndSleeps_data();
    void restsWorksAndSleeps();
};

void TestLivelyLoad::isBelievable_data()
{
    QTest::addColumn<QByteArray>("machine");
    QTest::addColumn<double>("mostCPUWatts");
    QTest::addColumn<double>("mostGPUWatts");
    QTest::newRow("base chip") << QByteArray("m1") << 20.0 << 14.0;
    QTest::newRow("Max") << QByteArray("max") << 36.0 << 50.0;
    QTest::newRow("Ultra") << QByteArray("ultra") << 60.0 << 120.0;
    QTest::newRow("Pro of the fifth") << QByteArray("m5pro") << 30.0 << 35.0;
}

void TestLivelyLoad::isBelievable()
{
    QFETCH(QByteArray, machine);
    QFETCH(double, mostCPUWatts);
    QFETCH(double, mostGPUWatts);
    mac().boot(*machineNamed(machine.toStdString()));
    const ChipSource chip = openChipSource([] { return mac().clock(); });
    LivelyLoad load;
    double leastGPU = 1;
    double mostGPU = 0;
    std::uint64_t leastUsed = MemorySampler::sample().total;
    std::uint64_t mostUsed = 0;
    for (int tick = 0; tick < 120; ++tick) {
        for (int step = 0; step < 5; ++step)
            load.step(0.2);
        const ChipReading reading = chip().value();
        QVERIFY(reading.cpuWatts >= 0 && reading.cpuWatts < 1.5 * mostCPUWatts);
        QVERIFY(reading.gpuWatts > 0 && reading.gpuWatts < mostGPUWatts);
        QVERIFY(reading.cpuActiveFraction > 0 && reading.cpuActiveFraction < 1);
        if (tick > 8) // Two batches of energy are needed for watts.
            QVERIFY(!reading.denied.anyWatts() && reading.cpuWatts > 0);
        QVERIFY(reading.cpuActiveMHz > 600 && reading.cpuActiveMHz < 4600);
        QVERIFY(reading.gpuDominantState->startsWith(QLatin1Char('P')));
        QVERIFY(reading.cpuTempC && *reading.cpuTempC > 30 && *reading.cpuTempC < 105);
        leastGPU = std::min(leastGPU, reading.gpuActiveFraction);
        mostGPU = std::max(mostGPU, reading.gpuActiveFraction);
        const MemorySnapshot memory = MemorySampler::sample();
        QVERIFY(memory.used < memory.total);
        leastUsed = std::min(leastUsed, memory.used);
        mostUsed = std::max(mostUsed, memory.used);
    }
    QVERIFY(mostGPU - leastGPU > 0.2); // It rests and it works.
    QVERIFY(mostUsed > leastUsed);
}

void TestLivelyLoad::restsWorksAndSleeps_data()
{
    QTest::addColumn<QByteArray>("machine");
    for (const char *machine : {"m1", "max", "ultra", "m5pro"})
        QTest::newRow(machine) << QByteArray(machine);
}

void TestLivelyLoad::restsWorksAndSleeps()
{
    QFETCH(QByteArray, machine);
    QVERIFY(!LivelyLoad::modeNamed("walk"));
    for (const char *name : {"idle", "work", "asleep"}) {
        const LivelyLoad::Mode mode = LivelyLoad::modeNamed(name).value();
        mac().boot(*machineNamed(machine.toStdString()));
        const ChipSource chip = openChipSource([] { return mac().clock(); });
        LivelyLoad load(mode);
        for (int tick = 0; tick < 20; ++tick) {
            for (int step = 0; step < 5; ++step)
                load.step(0.2);
            const ChipReading reading = chip().value();
            if (tick < 8)
                continue;
            const bool sleeps = mode == LivelyLoad::Mode::asleep;
            QCOMPARE(reading.denied.cpuWatts, sleeps);
            QCOMPARE(reading.denied.aneWatts, sleeps);
            QCOMPARE(reading.cpuWatts > 0, !sleeps);
            QCOMPARE(reading.gpuActiveFraction > 0.6, mode == LivelyLoad::Mode::work);
            QCOMPARE(reading.gpuActiveFraction > 0, !sleeps);
            QVERIFY(reading.gpuActiveFraction < 0.1 || mode == LivelyLoad::Mode::work);
        }
    }
}

QTEST_APPLESS_MAIN(TestLivelyLoad)
#include "tst_LivelyLoad.moc"
