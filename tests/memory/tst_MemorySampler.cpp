#include "memory/MemorySampler.h"

#include "support/DyingChild.h"
#include "support/Snapshots.h"

#include <QTest>

#include <limits>

using namespace corvane;
using namespace corvane::test;

class TestMemorySampler : public QObject {
    Q_OBJECT

private slots:
    void computes_data();
    void computes();
    void mapsPressure_data();
    void mapsPressure();
    void overflowIsFatal_data();
    void overflowIsFatal();
    void samplesThisMachine();
};

void TestMemorySampler::computes_data()
{
    using Counters = MemoryCounters;
    QTest::addColumn<MemoryCounters>("counters");
    QTest::addColumn<MemorySnapshot>("expected");

    // cached = min((30 + 100) × 10, 200 × 10) = 1300
    // appMemory = (40 + 20 + 5) × 10 = 650; used = 650 + (2000 - 1300) = 1350
    QTest::newRow("a machine with all counts")
        << Counters{.totalBytes = 10'000,
                    .pageSize = 10,
                    .pages = Counters::Pages{.free = 300,
                                             .active = 20,
                                             .inactive = 200,
                                             .wired = 40,
                                             .compressor = 5,
                                             .purgeable = 30,
                                             .external = 100},
                    .swap = Counters::Swap{.total = 4096, .used = 1024},
                    .pressureLevel = 1,
                    .availableBytes = 5000,
                    .gpuLimitBytes = 6000,
                    .gpuUsedBytes = 700}
        << MemorySnapshot{.total = 10'000,
                          .used = 1350,
                          .free = 3000,
                          .active = 200,
                          .wired = 400,
                          .compressed = 50,
                          .cached = 1300,
                          .appMemory = 650,
                          .swapTotal = 4096,
                          .swapUsed = 1024,
                          .available = 5000,
                          .gpuLimit = 6000,
                          .gpuUsed = 700};
    // cached = min((150 + 150) × 10, 200 × 10) = 2000; used = appMemory = 700
    QTest::newRow("more purgeable and external pages than inactive ones")
        << Counters{.totalBytes = 10'000,
                    .pageSize = 10,
                    .pages = Counters::Pages{.active = 30,
                                             .inactive = 200,
                                             .wired = 40,
                                             .purgeable = 150,
                                             .external = 150}}
        << MemorySnapshot{.total = 10'000,
                          .used = 700,
                          .active = 300,
                          .wired = 400,
                          .cached = 2000,
                          .appMemory = 700};
    QTest::newRow("the same, with more application memory than there is")
        << Counters{.totalBytes = 600,
                    .pageSize = 10,
                    .pages = Counters::Pages{.active = 30,
                                             .inactive = 200,
                                             .wired = 40,
                                             .purgeable = 150,
                                             .external = 150}}
        << MemorySnapshot{.total = 600,
                          .used = 600,
                          .active = 300,
                          .wired = 400,
                          .cached = 2000,
                          .appMemory = 700};
    QTest::newRow("application memory as large as the total")
        << Counters{.totalBytes = 700,
                    .pageSize = 10,
                    .pages = Counters::Pages{.active = 30, .wired = 40}}
        << MemorySnapshot{.total = 700, .used = 700, .active = 300, .wired = 400, .appMemory = 700};
    QTest::newRow("inactive memory that is no cache raises use to the total")
        << Counters{.totalBytes = 1000,
                    .pageSize = 10,
                    .pages = Counters::Pages{.active = 30, .inactive = 200, .wired = 40}}
        << MemorySnapshot{
               .total = 1000, .used = 1000, .active = 300, .wired = 400, .appMemory = 700};
    QTest::newRow("an unreadable total caps use at 0")
        << Counters{.pageSize = 10, .pages = Counters::Pages{.free = 7, .active = 30}}
        << MemorySnapshot{.free = 70, .active = 300, .appMemory = 300};
    QTest::newRow("unreadable statistics leave the total alone")
        << Counters{.totalBytes = 10'000,
                    .pageSize = 10,
                    .swap = Counters::Swap{.total = 4096, .used = 1024},
                    .pressureLevel = 4}
        << MemorySnapshot{.total = 10'000};
    QTest::newRow("an unknown page size makes every size from pages 0")
        << Counters{.totalBytes = 10'000,
                    .pages = Counters::Pages{.free = 1, .active = 2, .inactive = 3, .wired = 4},
                    .swap = Counters::Swap{.total = 4096, .used = 1024},
                    .pressureLevel = 2}
        << MemorySnapshot{.total = 10'000,
                          .swapTotal = 4096,
                          .swapUsed = 1024,
                          .pressure = MemoryPressure::warning};
    QTest::newRow("unreadable swap is no swap")
        << Counters{.totalBytes = 10'000, .pageSize = 10, .pages = Counters::Pages{.free = 1000}}
        << MemorySnapshot{.total = 10'000, .free = 10'000};
    QTest::newRow("nothing readable") << Counters{} << MemorySnapshot{};
    // 2^26 pages of 16 KiB are a TiB each; sizes beyond 2^32 keep every bit.
    QTest::newRow("a machine of four TiB")
        << Counters{.totalBytes = std::uint64_t(4) << 40,
                    .pageSize = 16384,
                    .pages = Counters::Pages{.active = (1 << 26) + 1, .wired = 1 << 26}}
        << MemorySnapshot{.total = std::uint64_t(4) << 40,
                          .used = (std::uint64_t(2) << 40) + 16384,
                          .active = (std::uint64_t(1) << 40) + 16384,
                          .wired = std::uint64_t(1) << 40,
                          .appMemory = (std::uint64_t(2) << 40) + 16384};
}

void TestMemorySampler::computes()
{
    QFETCH(MemoryCounters, counters);
    QFETCH(MemorySnapshot, expected);
    QCOMPARE(described(MemorySampler::snapshot(counters)), described(expected));
}

void TestMemorySampler::mapsPressure_data()
{
    using Level = std::optional<std::int32_t>;
    QTest::addColumn<Level>("level");
    QTest::addColumn<MemoryPressure>("expected");
    QTest::newRow("1") << Level(1) << MemoryPressure::normal;
    QTest::newRow("2") << Level(2) << MemoryPressure::warning;
    QTest::newRow("4") << Level(4) << MemoryPressure::critical;
    QTest::newRow("0") << Level(0) << MemoryPressure::normal;
    QTest::newRow("3") << Level(3) << MemoryPressure::normal;
    QTest::newRow("5") << Level(5) << MemoryPressure::normal;
    QTest::newRow("negative") << Level(-2) << MemoryPressure::normal;
    QTest::newRow("unreadable") << Level() << MemoryPressure::normal;
}

void TestMemorySampler::mapsPressure()
{
    QFETCH(std::optional<std::int32_t>, level);
    QFETCH(MemoryPressure, expected);
    const MemoryCounters counters{.pages = MemoryCounters::Pages{}, .pressureLevel = level};
    QVERIFY(MemorySampler::snapshot(counters).pressure == expected);
}

void TestMemorySampler::overflowIsFatal_data()
{
    using Counters = MemoryCounters;
    constexpr std::uint64_t most = std::numeric_limits<std::uint64_t>::max();
    QTest::addColumn<MemoryCounters>("counters");
    QTest::addColumn<bool>("fatal");
    QTest::newRow("the largest count that fits")
        << Counters{.pageSize = 1, .pages = Counters::Pages{.free = most}} << false;
    QTest::newRow("a product") << Counters{.pageSize = 2, .pages = Counters::Pages{.free = most}}
                               << true;
    QTest::newRow("the sum of application memory")
        << Counters{.pageSize = 1, .pages = Counters::Pages{.active = most, .wired = 1}} << true;
}

void TestMemorySampler::overflowIsFatal()
{
    QFETCH(MemoryCounters, counters);
    QTEST(aborts([&] { MemorySampler::snapshot(counters); }), "fatal");
}

void TestMemorySampler::samplesThisMachine()
{
    for (int i = 0; i < 3; ++i) {
        const MemorySnapshot memory = MemorySampler::sample();
        QVERIFY(memory.total > 0);
        QVERIFY(memory.used > 0 && memory.used <= memory.total);
        QVERIFY(memory.free < memory.total);
        QCOMPARE(memory.appMemory, memory.active + memory.wired + memory.compressed);
        QVERIFY(memory.swapUsed <= memory.swapTotal);
    }
}

QTEST_APPLESS_MAIN(TestMemorySampler)
#include "tst_MemorySampler.moc"
