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
};

void TestLivelyLoad::isBelievable_data()
{
    QTest::addColumn<QByteArray>("machine");
    QTest::addColumn<double>("mostCPUWatts");
    QTest::addColumn<double>("mostGPUWatts");
    QTest::newRow("base chip") << QByteArray("m1") << 20.0 << 14.0;
    QTest::newRow("Max") << QByteArray("max") << 36.0 << 50.0;
    QTest::newRow("Ultra") << QByteArray("ultra") << 60.0 << 120.0;
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
        QVERIFY(reading.cpuActiveMHz > 600 && reading.cpuActiveMHz < 4600);
        QVERIFY(!reading.gpuDominantState->isEmpty());
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

QTEST_APPLESS_MAIN(TestLivelyLoad)
#include "tst_LivelyLoad.moc"
