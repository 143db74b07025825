#include "memory/MemoryFiles_linux.h"

#include "memory/MemorySampler.h"
#include "support/FaultyCalls.h"
#include "support/MachineTree.h"
#include "support/Machines.h"
#include "support/Snapshots.h"
#include "support/Waiting.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using FaultyCalls::Call;

namespace {

constexpr std::uint64_t kib = 1024;

} // namespace

class TestMemoryFiles : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { FaultyCalls::clear(); }
    void readsMachines_data();
    void readsMachines();
    void readsAgain();
    void findsDisksAndCachesThatComeAndGo();
    void isAbsentWithoutFiles();
    void aFileThatHangsDelaysNothing_data();
    void aFileThatHangsDelaysNothing();
};

/// For every machine, in KiB:
///   cached = Active(file) + Inactive(file) + KReclaimable + what the ZFS cache can release
///   compressed = Zswap + memory of compressed disks
///   active = Active(anon) + Inactive(anon)
///   wired = MemTotal - MemFree - active - compressed - cached
///   appMemory = wired + active + compressed
///   used = appMemory, which is MemTotal - MemFree - cached
void TestMemoryFiles::readsMachines_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<MemorySnapshot>("expected");

    // cached = 1890112 + 2334208 + 412680; compressed = 0 + 1105199104 / 1024 + 0
    // wired = 16177412 - 1034220 - 4210376 - 1079296 - 2105344 - 4637000
    // some avg10 = 12.50, full avg10 = 3.25
    QTest::newRow("a laptop that swaps to a compressed disk")
        << u"laptop-hybrid-zram"_s
        << MemorySnapshot{.total = 16'177'412 * kib,
                          .used = 10'506'192 * kib,
                          .free = 1'034'220 * kib,
                          .active = 6'315'720 * kib,
                          .wired = 3'111'176 * kib,
                          .compressed = 1'079'296 * kib,
                          .cached = 4'637'000 * kib,
                          .appMemory = 10'506'192 * kib,
                          .swapTotal = 8'388'604 * kib,
                          .swapUsed = 4'194'304 * kib,
                          .pressure = MemoryPressure::warning,
                          .available = 5'230'108 * kib};
    // ZFS: (549755813888 - 68719476736) / 1024 = 469762048
    // cached = 50000000 + 80000000 + 30123456 + 469762048
    // wired = 2113546240 - 412345678 - 351234560 - 0 - 80000000 - 629885504, huge pages among it
    QTest::newRow("a server of 2 TB with ZFS and huge pages")
        << u"server-offline-core"_s
        << MemorySnapshot{.total = 2'113'546'240 * kib,
                          .used = 1'071'315'058 * kib,
                          .free = 412'345'678 * kib,
                          .active = 431'234'560 * kib,
                          .wired = 640'080'498 * kib,
                          .cached = 629'885'504 * kib,
                          .appMemory = 1'071'315'058 * kib,
                          .available = 1'010'203'040 * kib};
    // cached = 105112 + 98116 + 61440
    // wired = 3913088 - 50244 - 2105344 - 0 - 1204000 - 264668
    // full avg10 = 50.12
    QTest::newRow("a board that is short of memory")
        << u"arm-board"_s
        << MemorySnapshot{.total = 3'913'088 * kib,
                          .used = 3'598'176 * kib,
                          .free = 50'244 * kib,
                          .active = 3'309'344 * kib,
                          .wired = 288'832 * kib,
                          .cached = 264'668 * kib,
                          .appMemory = 3'598'176 * kib,
                          .pressure = MemoryPressure::critical,
                          .available = 201'120 * kib};
    // cached = 300000 + 400000 + 120000; compressed = 204800
    // wired = 8000000 - 150000 - 3600000 - 204800 - 2500000 - 820000
    // available = 560000 of 8000000 = 7 %
    QTest::newRow("a kernel without pressure statistics")
        << u"kernel-without-psi"_s
        << MemorySnapshot{.total = 8'000'000 * kib,
                          .used = 7'030'000 * kib,
                          .free = 150'000 * kib,
                          .active = 6'100'000 * kib,
                          .wired = 725'200 * kib,
                          .compressed = 204'800 * kib,
                          .cached = 820'000 * kib,
                          .appMemory = 7'030'000 * kib,
                          .swapTotal = 4'194'300 * kib,
                          .swapUsed = 3'145'724 * kib,
                          .pressure = MemoryPressure::warning,
                          .available = 560'000 * kib};
    // cached = 406300 + 615988 + 116240
    // wired = 24684084 - 23266212 - 1632 - 0 - 141116 - 1138528
    QTest::newRow("a virtual machine at rest") << u"virtual-machine"_s
                                               << MemorySnapshot{.total = 24'684'084 * kib,
                                                                 .used = 279'344 * kib,
                                                                 .free = 23'266'212 * kib,
                                                                 .active = 142'748 * kib,
                                                                 .wired = 136'596 * kib,
                                                                 .cached = 1'138'528 * kib,
                                                                 .appMemory = 279'344 * kib,
                                                                 .available = 24'137'916 * kib};
}

void TestMemoryFiles::readsMachines()
{
    QFETCH(QString, name);
    QFETCH(MemorySnapshot, expected);
    MemoryFiles reader(machine(name.toStdString()));
    QCOMPARE(described(MemorySampler::snapshot(reader.read())), described(expected));
    QCOMPARE(described(MemorySampler::snapshot(reader.read())), described(expected));
}

void TestMemoryFiles::readsAgain()
{
    const MachineTree tree;
    tree.write("proc/meminfo", "MemTotal: 100 kB\nMemFree: 60 kB\n");
    MemoryFiles reader(tree.root());
    QCOMPARE(reader.read().pages->free, std::uint64_t(60));
    tree.write("proc/meminfo", "MemTotal: 100 kB\nMemFree: 5 kB\n");
    QCOMPARE(reader.read().pages->free, std::uint64_t(5));
    tree.write("proc/meminfo", "");
    QVERIFY(!reader.read().pages);
    tree.write("proc/meminfo", "MemTotal: 100 kB\nMemFree: 7 kB\n");
    QCOMPARE(reader.read().pages->free, std::uint64_t(7));
    QVERIFY(!reader.read().pressureLevel);
    tree.write("proc/pressure/memory", "some avg10=50.00 avg60=0.00 avg300=0.00 total=0\n");
    QCOMPARE(reader.read().pressureLevel, std::optional<std::int32_t>(2));
}

void TestMemoryFiles::findsDisksAndCachesThatComeAndGo()
{
    const MachineTree tree;
    tree.write("proc/meminfo", "MemTotal: 1000 kB\nMemFree: 100 kB\n");
    tree.write("sys/block/sda/mm_stat", "9 9 999424 9 9 9 9 9 9\n");
    MemoryFiles reader(tree.root());
    QCOMPARE(reader.read().pages->compressor, std::uint64_t(0));
    QCOMPARE(reader.read().pages->purgeable, std::uint64_t(0));

    // It may take up to a minute of ticks.
    const auto withinAMinute = [&reader](auto count, std::uint64_t expected) {
        for (int tick = 0; tick < 60; ++tick) {
            const auto pages = reader.read().pages;
            if (pages && (*pages).*count == expected)
                return true;
        }
        return false;
    };
    constexpr auto compressor = &MemoryCounters::Pages::compressor;
    constexpr auto purgeable = &MemoryCounters::Pages::purgeable;
    tree.write("sys/block/zram0/mm_stat", "9 9 4096 9 9 9 9 9 9\n");
    QVERIFY(withinAMinute(compressor, 4));
    tree.write("sys/block/zram1/mm_stat", "9 9 8192 9 9 9 9 9 9\n");
    QVERIFY(withinAMinute(compressor, 12));
    tree.write("proc/spl/kstat/zfs/arcstats", "size 4 5120\nc_min 4 1024\n");
    QVERIFY(withinAMinute(purgeable, 4));

    // Beside a ZFS cache, files that were found are read every second time.
    tree.write("sys/block/zram0/mm_stat", "9 9 1024 9 9 9 9 9 9\n");
    tree.write("proc/spl/kstat/zfs/arcstats", "size 4 7168\nc_min 4 1024\n");
    reader.read();
    const auto pages = reader.read().pages;
    QCOMPARE(pages->compressor, std::uint64_t(9));
    QCOMPARE(pages->purgeable, std::uint64_t(6));

    tree.remove("sys/block/zram1");
    QVERIFY(withinAMinute(compressor, 1));

    tree.write("proc/spl/kstat/zfs/arcstats", ""); // As after the module has gone.
    QVERIFY(withinAMinute(purgeable, 0));
    tree.write("sys/block/zram0/mm_stat", "9 9 2048 9 9 9 9 9 9\n");
    for (int tick = 0; tick < 6; ++tick)
        reader.read();
    QCOMPARE(reader.read().pages->compressor, std::uint64_t(2));
}

void TestMemoryFiles::isAbsentWithoutFiles()
{
    const MachineTree tree;
    MemoryFiles reader(tree.root());
    const MemoryCounters counters = reader.read();
    QVERIFY(!counters.totalBytes);
    QVERIFY(!counters.pages);
    QVERIFY(!counters.swap);
    QVERIFY(!counters.pressureLevel);
    QCOMPARE(described(MemorySampler::snapshot(counters)), described(MemorySnapshot()));
}

void TestMemoryFiles::aFileThatHangsDelaysNothing_data()
{
    QTest::addColumn<std::string>("file");
    QTest::newRow("a compressed disk") << std::string("/mm_stat");
    QTest::newRow("the ZFS cache") << std::string("/arcstats");
}

/// The memory itself goes on; what the thread reads is absent once it is old.
void TestMemoryFiles::aFileThatHangsDelaysNothing()
{
    QFETCH(const std::string, file);
    const MachineTree tree;
    tree.write("proc/meminfo", "MemTotal: 1000 kB\nMemFree: 100 kB\n");
    tree.write("proc/pressure/memory", "some avg10=50.00 avg60=0.00 avg300=0.00 total=0\n");
    tree.write("sys/block/zram0/mm_stat", "9 9 4096 9 9 9 9 9 9\n");
    tree.write("proc/spl/kstat/zfs/arcstats", "size 4 5120\nc_min 4 1024\n");
    double now = 500;
    MemoryFiles reader(tree.root(), [&now] { return now; }, {.first = std::chrono::minutes(1)});
    const auto isWhole = [](const MemoryCounters &counters) {
        return counters.pressureLevel == 2 && counters.pages->compressor == 4
            && counters.pages->purgeable == 4;
    };
    QVERIFY(isWhole(reader.read()));
    FaultyCalls::stall(Call::read, file);
    for (now = 501; now <= 512; ++now)
        QVERIFY(isWhole(reader.read()));
    FaultyCalls::waitForStalled();
    tree.write("proc/meminfo", "MemTotal: 1000 kB\nMemFree: 50 kB\n");
    const MemoryCounters counters = reader.read();
    QCOMPARE(counters.pages->free, std::uint64_t(50));
    QCOMPARE(counters.pressureLevel, std::optional<std::int32_t>(2));
    QCOMPARE(counters.pages->compressor, std::uint64_t(0));
    QCOMPARE(counters.pages->purgeable, std::uint64_t(0));
    FaultyCalls::letGo();
    TRY_VERIFY(isWhole(reader.read()));
}

QTEST_APPLESS_MAIN(TestMemoryFiles)
#include "tst_MemoryFiles.moc"
