#include "cpu/CPUCoreSampler.h"
#include "cpu/CoreTicks_mac.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

using Fractions = std::vector<double>;

class TestCoreTicksOnMac : public QObject {
    Q_OBJECT

private slots:
    void init() { mac().boot(baseM1()); }
    void readsEveryState();
    void becomesUtilisations();
    void hasNothingWhenTheKernelRefuses_data();
    void hasNothingWhenTheKernelRefuses();
    void takesWholeProcessorsOnly();
    void givesTheMemoryBack();
};

void TestCoreTicksOnMac::readsEveryState()
{
    const auto before = readCoreTicks();
    mac().advance(2);
    const auto after = readCoreTicks();
    QVERIFY(before && after);
    QCOMPARE(after->size(), 8U);
    // The fourth CPU: 20 ticks a second for programs, 50 idle, 30 nice.
    const CoreTicks &old = (*before)[3];
    const CoreTicks &now = (*after)[3];
    QCOMPARE(static_cast<std::uint32_t>(now.user - old.user), 40U);
    QCOMPARE(static_cast<std::uint32_t>(now.system - old.system), 0U);
    QCOMPARE(static_cast<std::uint32_t>(now.idle - old.idle), 100U);
    QCOMPARE(static_cast<std::uint32_t>(now.nice - old.nice), 60U);
}

void TestCoreTicksOnMac::becomesUtilisations()
{
    CPUCoreSampler sampler(readCoreTicks);
    QCOMPARE(sampler.sample(), Fractions(8, 0.0));
    for (int second = 0; second < 20; ++second) { // The counters wrap on the way.
        mac().advance(1);
        QCOMPARE(sampler.sample(), (Fractions{0.5, 1 - 0.55, 1 - 0.8, 0.5, 0, 0.75, 0, 1}));
    }
    QCOMPARE(sampler.sample(), Fractions(8, 0.0)); // No time has passed.
}

void TestCoreTicksOnMac::hasNothingWhenTheKernelRefuses_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("with an error") << static_cast<int>(Way::error);
    QTest::newRow("with no array") << static_cast<int>(Way::null);
}

void TestCoreTicksOnMac::hasNothingWhenTheKernelRefuses()
{
    QFETCH(int, way);
    CPUCoreSampler sampler(readCoreTicks);
    sampler.sample();
    const Accounts before = accounts();
    mac().advance(1);
    faults().failOnce(Call::host_processor_info, static_cast<Way>(way));
    QVERIFY(sampler.sample().empty());
    QVERIFY(accounts() == before);
    // The ticks before the failure still count.
    QCOMPARE(sampler.sample(), (Fractions{0.5, 1 - 0.55, 1 - 0.8, 0.5, 0, 0.75, 0, 1}));
}

void TestCoreTicksOnMac::takesWholeProcessorsOnly()
{
    faults().failOnce(Call::host_processor_info, Way::shortAnswer); // 17 words for 8 CPUs.
    const auto ticks = readCoreTicks();
    QVERIFY(ticks);
    QCOMPARE(ticks->size(), 4U);
}

void TestCoreTicksOnMac::givesTheMemoryBack()
{
    CPUCoreSampler sampler(readCoreTicks);
    sampler.sample();
    const Accounts before = accounts();
    faults().failRandomly(3, 0.5);
    for (int tick = 0; tick < 200; ++tick) {
        mac().advance(1);
        sampler.sample();
    }
    QVERIFY(accounts() == before);
    QCOMPARE(before.memoryBlocks, 0L);
    QCOMPARE(before.hostRights, 1L);
}

QTEST_APPLESS_MAIN(TestCoreTicksOnMac)
#include "tst_CoreTicks_mac.moc"
