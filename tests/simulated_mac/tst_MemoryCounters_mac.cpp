#include "memory/MemorySampler.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

class TestMemoryCountersOnMac : public QObject {
    Q_OBJECT

private slots:
    void init() { mac().boot(baseM1()); }
    void readsEveryRevision_data();
    void readsEveryRevision();
    void addsUp();
    void readsPressure();
    void readsWhatTheGPUHas();
    void hasNothingOfAGPUThatDoesNotTell_data();
    void hasNothingOfAGPUThatDoesNotTell();
    void hasNoPagesWhenTheKernelRefuses_data();
    void hasNoPagesWhenTheKernelRefuses();
    void hasNoValueOfAControlThatFails_data();
    void hasNoValueOfAControlThatFails();
    void survivesGarbage();
    void keepsOneHostRight();
};

void TestMemoryCountersOnMac::readsEveryRevision_data()
{
    QTest::addColumn<std::uint32_t>("words");
    QTest::newRow("38 words, until macOS 15") << 38U;
    QTest::newRow("40 words, macOS 26") << 40U;
    QTest::newRow("62 words, later") << 62U;
}

void TestMemoryCountersOnMac::readsEveryRevision()
{
    QFETCH(std::uint32_t, words);
    mac().machine.statisticsWords = words;
    const MemoryCounters counters = readMemoryCounters();
    QCOMPARE(counters.totalBytes, std::optional<std::uint64_t>(17'179'869'184));
    QCOMPARE(counters.pageSize, std::uint64_t(16384));
    QVERIFY(counters.pages);
    QCOMPARE(counters.pages->free, 40'000U);
    QCOMPARE(counters.pages->active, 300'000U);
    QCOMPARE(counters.pages->inactive, 290'000U);
    QCOMPARE(counters.pages->wired, 150'000U);
    QCOMPARE(counters.pages->compressor, 120'000U);
    QCOMPARE(counters.pages->purgeable, 10'000U);
    QCOMPARE(counters.pages->external, 200'000U);
    QVERIFY(counters.swap);
    QCOMPARE(counters.swap->total, 2'147'483'648U);
    QCOMPARE(counters.swap->used, 536'870'912U);
    QCOMPARE(counters.pressureLevel, std::optional<std::int32_t>(1));
}

void TestMemoryCountersOnMac::addsUp()
{
    const MemorySnapshot memory = MemorySampler::snapshot(readMemoryCounters());
    QCOMPARE(memory.cached, 210'000U * 16384ULL);    // 10,000 purgeable and 200,000 of files.
    QCOMPARE(memory.appMemory, 570'000U * 16384ULL); // 150,000 + 300,000 + 120,000.
    QCOMPARE(memory.used, 650'000U * 16384ULL);      // And 290,000 inactive less 210,000 cached.
    QCOMPARE(memory.total, std::uint64_t(17'179'869'184));
}

void TestMemoryCountersOnMac::readsPressure()
{
    mac().machine.pressureLevel = 4;
    QCOMPARE(readMemoryCounters().pressureLevel, std::optional<std::int32_t>(4));
}

void TestMemoryCountersOnMac::readsWhatTheGPUHas()
{
    QVERIFY(!readMemoryCounters().gpuUsedBytes);
    QVERIFY(!readMemoryCounters().gpuLimitBytes);
    mac().machine.graphics = Graphics{.memoryUsed = 3'221'225'472};
    mac().machine.gpuLimitMebibytes = 0; // Unset.
    const Accounts before = accounts();
    QCOMPARE(readMemoryCounters().gpuUsedBytes, std::optional<std::uint64_t>(3'221'225'472));
    QVERIFY(!readMemoryCounters().gpuLimitBytes);
    mac().machine.gpuLimitMebibytes = 12'288;
    const MemorySnapshot memory = MemorySampler::snapshot(readMemoryCounters());
    QCOMPARE(memory.gpuUsed, std::optional<std::uint64_t>(3'221'225'472));
    QCOMPARE(memory.gpuLimit, std::optional<std::uint64_t>(12'884'901'888));
    QVERIFY(!memory.available);
    QVERIFY(accounts() == before);
}

void TestMemoryCountersOnMac::hasNothingOfAGPUThatDoesNotTell_data()
{
    QTest::addColumn<std::int64_t>("used");
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("way");
    const auto row = [](const char *name, std::int64_t used, Call call = Call::dlopen,
                        Way way = Way::null) {
        QTest::newRow(name) << used << static_cast<int>(call) << static_cast<int>(way);
    };
    row("a negative number", -1);
    row("more than any machine has", std::int64_t(1) << 51);
    row("no matching dictionary", 1, Call::IOServiceMatching);
    row("no accelerator", 1, Call::IOServiceGetMatchingService);
    row("no key", 1, Call::CFStringCreateWithCString);
    row("no statistics", 1, Call::IORegistryEntryCreateCFProperty);
    row("a text for statistics", 1, Call::IORegistryEntryCreateCFProperty, Way::wrongType);
    row("bytes for statistics", 1, Call::IORegistryEntryCreateCFProperty, Way::garbage);
    row("a number that cannot be read", 1, Call::CFNumberGetValue, Way::error);
}

void TestMemoryCountersOnMac::hasNothingOfAGPUThatDoesNotTell()
{
    QFETCH(std::int64_t, used);
    QFETCH(int, call);
    QFETCH(int, way);
    mac().machine.graphics = Graphics{.memoryUsed = used};
    mac().machine.gpuLimitMebibytes = -1;
    const Accounts before = accounts();
    faults().failAlways(static_cast<Call>(call), static_cast<Way>(way));
    const MemoryCounters counters = readMemoryCounters();
    QVERIFY(!counters.gpuUsedBytes);
    QVERIFY(!counters.gpuLimitBytes);
    QVERIFY(counters.totalBytes);
    QVERIFY(accounts() == before);
}

void TestMemoryCountersOnMac::hasNoPagesWhenTheKernelRefuses_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("with an error") << static_cast<int>(Way::error);
    QTest::newRow("with a record that ends before the last field")
        << static_cast<int>(Way::shortAnswer);
}

void TestMemoryCountersOnMac::hasNoPagesWhenTheKernelRefuses()
{
    QFETCH(int, way);
    faults().failAlways(Call::host_statistics64, static_cast<Way>(way));
    const MemoryCounters counters = readMemoryCounters();
    QVERIFY(!counters.pages);
    QVERIFY(counters.totalBytes);
    const MemorySnapshot memory = MemorySampler::snapshot(counters);
    QCOMPARE(memory.total, std::uint64_t(17'179'869'184));
    QCOMPARE(memory.used, 0U);
    QCOMPARE(memory.free, 0U);
    QCOMPARE(memory.swapTotal, 0U);
    QCOMPARE(memory.pressure, MemoryPressure::normal);
}

void TestMemoryCountersOnMac::hasNoValueOfAControlThatFails_data()
{
    QTest::addColumn<int>("way");
    QTest::newRow("with an error") << static_cast<int>(Way::error);
    QTest::newRow("with half of a value") << static_cast<int>(Way::shortAnswer);
}

void TestMemoryCountersOnMac::hasNoValueOfAControlThatFails()
{
    QFETCH(int, way);
    mac().machine.pressureLevel = 4;
    const auto reading = [way](int use) {
        faults().clear();
        faults().failOnce(Call::sysctlbyname, static_cast<Way>(way), use);
        return readMemoryCounters();
    };
    QVERIFY(!reading(1).totalBytes);
    QVERIFY(reading(1).swap);
    QVERIFY(!reading(2).swap);
    QVERIFY(reading(2).pressureLevel);
    QVERIFY(!reading(3).pressureLevel);
    QVERIFY(reading(3).totalBytes);

    QCOMPARE(MemorySampler::snapshot(reading(1)).total, 0U);
    QCOMPARE(MemorySampler::snapshot(reading(1)).used, 0U);
    QCOMPARE(MemorySampler::snapshot(reading(2)).swapTotal, 0U);
    QCOMPARE(MemorySampler::snapshot(reading(2)).swapUsed, 0U);
    QCOMPARE(MemorySampler::snapshot(reading(3)).pressure, MemoryPressure::normal);
}

void TestMemoryCountersOnMac::survivesGarbage()
{
    faults().failAlways(Call::host_statistics64, Way::garbage);
    faults().failAlways(Call::sysctlbyname, Way::garbage);
    for (int round = 0; round < 200; ++round) {
        const MemorySnapshot memory = MemorySampler::snapshot(readMemoryCounters());
        QVERIFY(memory.used <= memory.total);
    }
}

void TestMemoryCountersOnMac::keepsOneHostRight()
{
    readMemoryCounters();
    const Accounts before = accounts();
    for (int round = 0; round < 10; ++round)
        readMemoryCounters();
    QVERIFY(accounts() == before);
    QCOMPARE(before.hostRights, 1L);
}

QTEST_APPLESS_MAIN(TestMemoryCountersOnMac)
#include "tst_MemoryCounters_mac.moc"
