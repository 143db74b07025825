// Every platform call of the Apple sources made to fail, one at a time and all at random, with
// everything above them running: nothing may crash, and all that was handed out comes back.

#include "chip/ChipIdentity.h"
#include "chip/ChipSource.h"
#include "cpu/CPUCoreSampler.h"
#include "cpu/CoreTicks_mac.h"
#include "memory/MemorySampler.h"
#include "processes/ProcessBridge.h"
#include "simulated_mac/SimulatedMac.h"
#include "threads/ThreadPriority.h"

#include <QTest>

#include <cmath>

using namespace corvane;
using namespace corvane::simulated;

namespace {

/// One subscription a bridge stays for the life of the process; nothing else may.
Accounts accountsBesidesSubscriptions()
{
    Accounts besides = accounts();
    besides.objects -= besides.subscriptions;
    besides.references -= besides.subscriptions;
    besides.subscriptions = 0;
    return besides;
}

} // namespace

class TestFailingMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void survivesOneFailingCall_data();
    void survivesOneFailingCall();
    void coversATickThatFailed_data();
    void coversATickThatFailed();
    void releasesEverythingAfterRandomFailures_data();
    void releasesEverythingAfterRandomFailures();

private:
    static ChipSource openChip();
    /// True when the chip gave a reading.
    static bool readEverything(const ChipSource &chip);
};

void TestFailingMac::init()
{
    mac().boot(ultraM2());
    mac().machine.graphics = Graphics{.memoryUsed = 1 << 30};
    // The rights to the host port that are kept for the life of the process.
    MemorySampler::sample();
    CPUCoreSampler(readCoreTicks).sample();
}

ChipSource TestFailingMac::openChip()
{
    return openChipSource([] { return mac().clock(); });
}

bool TestFailingMac::readEverything(const ChipSource &chip)
{
    const MemorySnapshot memory = MemorySampler::sample();
    SystemInfo::shownChipName(readChipName());
    for (const ProcessRecord &process : ProcessBridge::topProcessesByMemory(20))
        ProcessBridge::processArgsForPID(*process.pid);
    lowerThreadPriority();
    const auto reading = chip ? chip() : std::nullopt;
    const auto check = [&] {
        QVERIFY(memory.used <= memory.total);
        if (!reading)
            return;
        for (const double amount :
             {reading->cpuWatts, reading->gpuWatts, reading->aneWatts, reading->cpuActiveMHz})
            QVERIFY(amount >= 0 && std::isfinite(amount));
        for (const double fraction : {reading->cpuActiveFraction, reading->gpuActiveFraction})
            QVERIFY(fraction >= 0 && fraction <= 1);
        for (const double fraction : reading->cpuCoreUtilizations)
            QVERIFY(fraction >= 0 && fraction <= 1);
        QVERIFY(reading->gpuStateResidency.size() <= 10);
        for (const auto &celsius :
             {reading->cpuTempC, reading->gpuTempC, reading->aneTempC, reading->packageTempC})
            QVERIFY(!celsius || (*celsius > 0 && *celsius < 200));
    };
    check();
    return reading.has_value();
}

void TestFailingMac::survivesOneFailingCall_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("way");
    for (const WaysOfCall &call : waysToFail()) {
        for (const Way way : call.ways)
            QTest::addRow("%s: %s", call.name, name(way))
                << static_cast<int>(call.call) << static_cast<int>(way);
    }
}

void TestFailingMac::survivesOneFailingCall()
{
    QFETCH(int, call);
    QFETCH(int, way);
    const Accounts before = accountsBesidesSubscriptions();
    const auto run = [&](auto setFault) {
        faults().clear();
        setFault();
        {
            const ChipSource chip = openChip();
            for (int tick = 0; tick < 3; ++tick) {
                mac().advance(1);
                readEverything(chip);
            }
        }
        QVERIFY(accountsBesidesSubscriptions() == before);
    };
    const auto failing = static_cast<Call>(call);
    const auto how = static_cast<Way>(way);
    run([&] { faults().failAlways(failing, how); });
    for (const int use : {1, 2, 3, 5, 8, 50})
        run([&] { faults().failOnce(failing, how, use); });
}

void TestFailingMac::coversATickThatFailed_data()
{
    QTest::addColumn<int>("call");
    QTest::newRow("no sample") << static_cast<int>(Call::IOReportCreateSamples);
    QTest::newRow("no difference") << static_cast<int>(Call::IOReportCreateSamplesDelta);
}

void TestFailingMac::coversATickThatFailed()
{
    QFETCH(int, call);
    const ChipSource chip = openChip();
    mac().advance(1);
    QCOMPARE(chip()->cpuWatts, 18.2);
    faults().failOnce(static_cast<Call>(call), Way::null);
    mac().advance(1);
    const Accounts before = accounts();
    QVERIFY(!chip());
    QVERIFY(accounts() == before); // The new sample is gone, the last good one is kept.
    for (Channel &channel : mac().machine.channels)
        channel.perSecond *= 3;
    mac().advance(1);
    // One second at the old power and one at three times as much.
    QCOMPARE(chip()->cpuWatts, 2 * 18.2);
}

void TestFailingMac::releasesEverythingAfterRandomFailures_data()
{
    QTest::addColumn<std::uint32_t>("seed");
    QTest::addColumn<double>("probability");
    QTest::newRow("now and then") << 1U << 0.0005;
    QTest::newRow("often") << 2U << 0.02;
    QTest::newRow("mostly") << 3U << 0.6;
}

void TestFailingMac::releasesEverythingAfterRandomFailures()
{
    QFETCH(std::uint32_t, seed);
    QFETCH(double, probability);
    const Accounts before = accountsBesidesSubscriptions();
    const long subscriptionsBefore = accounts().subscriptions;
    int readings = 0;
    int bridges = 0;
    {
        faults().failRandomly(seed, probability);
        ChipSource chip;
        for (int tick = 0; tick < 1000; ++tick) {
            // A chip that does not open, or that never reads, is opened anew now and then.
            if (tick % 10 == 0) {
                chip = openChip();
                bridges += chip ? 1 : 0;
            }
            mac().advance(1);
            readings += readEverything(chip) ? 1 : 0;
        }
        faults().clear();
    }
    QVERIFY(accountsBesidesSubscriptions() == before);
    QVERIFY(accounts().subscriptions - subscriptionsBefore >= bridges);
    if (probability < 0.1)
        QVERIFY(readings > 100); // The failures left something to fail.
}

QTEST_APPLESS_MAIN(TestFailingMac)
#include "tst_FailingMac.moc"
