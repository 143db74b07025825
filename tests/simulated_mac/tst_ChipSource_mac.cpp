#include "chip/ChipSource.h"
#include "simulated_mac/SensorHub.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

using namespace Qt::StringLiterals;

/// A chip source as the program opens it; what its readings hold is worked out elsewhere.
class TestChipSourceOnMac : public QObject {
    Q_OBJECT

private slots:
    void readsEveryMachine_data();
    void readsEveryMachine();
    void isEmptyWithoutALibrary();
    void aStalledSensorHubCostsNothingButTheTemperatures();
    void staysWhenTheLibraryStopsAnswering();
    void releasesEverything();
};

void TestChipSourceOnMac::readsEveryMachine_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<int>("cores");
    QTest::newRow("the base chip") << u"m1"_s << 8;
    QTest::newRow("the Max") << u"max"_s << 16;
    QTest::newRow("the Ultra") << u"ultra"_s << 24;
    QTest::newRow("the Pro of the fifth") << u"m5pro"_s << 18;
}

void TestChipSourceOnMac::readsEveryMachine()
{
    QFETCH(QString, machine);
    QFETCH(int, cores);
    mac().boot(machineNamed(machine.toStdString()).value());
    const ChipSource chip = openChipSource();
    QVERIFY(chip);
    for (int tick = 0; tick < 8; ++tick) {
        mac().advance(1);
        const auto reading = chip();
        if (tick < 6)
            continue; // Two batches of energy are needed for watts.
        QVERIFY(reading);
        QVERIFY(reading->cpuWatts > 0);
        QVERIFY(reading->gpuWatts > 0);
        QVERIFY(reading->aneWatts > 0);
        QVERIFY(reading->cpuActiveFraction > 0 && reading->cpuActiveFraction < 1);
        QVERIFY(reading->gpuActiveFraction > 0 && reading->gpuActiveFraction < 1);
        QVERIFY(reading->cpuActiveMHz > 500);
        QVERIFY(!reading->gpuDominantState->isEmpty());
        QVERIFY(!reading->gpuStateResidency.empty());
        QCOMPARE(static_cast<int>(reading->cpuCoreUtilizations.size()), cores);
        QVERIFY(reading->cpuTempC);
        QVERIFY(reading->packageTempC);
    }
}

void TestChipSourceOnMac::isEmptyWithoutALibrary()
{
    Machine machine = baseM1();
    machine.hasReportingFramework = false;
    machine.hasReportingLibrary = false;
    mac().boot(machine);
    const Accounts before = accounts();
    QVERIFY(!openChipSource());
    QVERIFY(accounts() == before); // The sensors that were asked for meanwhile are given back too.
}

void TestChipSourceOnMac::aStalledSensorHubCostsNothingButTheTemperatures()
{
    mac().boot(baseM1());
    const ChipSource chip = openChipSource([] { return mac().clock(); });
    const auto tick = [&chip] {
        mac().advance(1);
        return chip();
    };
    tick();
    QVERIFY(tick()->cpuTempC);
    sensorHub().stall();
    std::optional<ChipReading> reading;
    for (int second = 0; second < 5; ++second) {
        reading = tick();
        QVERIFY(reading);
        QCOMPARE(bool(reading->cpuTempC), second < 2); // The last ones stay for 2.5 s.
        QVERIFY(reading->cpuActiveFraction > 0);
    }
    sensorHub().resume();
    QTRY_VERIFY(tick()->cpuTempC);
}

void TestChipSourceOnMac::staysWhenTheLibraryStopsAnswering()
{
    mac().boot(baseM1());
    const ChipSource chip = openChipSource();
    faults().failAlways(Call::IOReportCreateSamples, Way::null);
    for (int tick = 0; tick < 3; ++tick)
        QVERIFY(!chip());
    QCOMPARE(faults().uses(Call::host_processor_info), 0); // No half reading: nothing else is read.
    QCOMPARE(faults().uses(Call::IOHIDServiceClientCopyEvent), 0);
    faults().clear();
    QVERIFY(chip());

    // A source that had no first sample has nothing to measure from.
    faults().failOnce(Call::IOReportCreateSamples, Way::null);
    const ChipSource blind = openChipSource();
    QVERIFY(blind);
    QVERIFY(!blind());
    QVERIFY(!blind());
}

void TestChipSourceOnMac::releasesEverything()
{
    mac().boot(ultraM2());
    openChipSource()(); // The right to the host port that is kept for the life of the process.
    const Accounts before = accounts();
    {
        const ChipSource chip = openChipSource();
        const ChipSource copy = chip;
        QVERIFY(chip() && copy());
        const Accounts held = accounts();
        QVERIFY(chip() && copy());
        QVERIFY(accounts() == held);
    }
    QCOMPARE(accounts().subscriptions, before.subscriptions + 1); // It stays, by design.
    QCOMPARE(accounts().objects, before.objects + 1);
    QCOMPARE(accounts().references, before.references + 1);
}

QTEST_APPLESS_MAIN(TestChipSourceOnMac)
#include "tst_ChipSource_mac.moc"
