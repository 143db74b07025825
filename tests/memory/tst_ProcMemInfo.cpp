#include "memory/ProcMemInfo.h"

#include <QTest>

using namespace corvane;

namespace {

using Level = std::optional<std::int32_t>;

std::string_view view(const QByteArray &text)
{
    return {text.constData(), std::size_t(text.size())};
}

/// A machine of 100,000 KiB; each count differs from all others.
constexpr std::string_view wholeMachine = "MemTotal:         100000 kB\n"
                                          "MemFree:           10000 kB\n"
                                          "MemAvailable:      50000 kB\n"
                                          "Buffers:             777 kB\n"
                                          "Active:            99999 kB\n"
                                          "Inactive:          99999 kB\n"
                                          "Active(anon):      20000 kB\n"
                                          "Inactive(anon):     3000 kB\n"
                                          "Active(file):       4000 kB\n"
                                          "Inactive(file):      500 kB\n"
                                          "SwapTotal:          9000 kB\n"
                                          "SwapFree:           2000 kB\n"
                                          "Zswap:                60 kB\n"
                                          "Zswapped:            999 kB\n"
                                          "KReclaimable:          7 kB\n"
                                          "SReclaimable:          5 kB\n"
                                          "HugePages_Total:       0\n";

} // namespace

class TestProcMemInfo : public QObject {
    Q_OBJECT

private slots:
    void readsEveryCount();
    void compressedDisksCountAsCompressor();
    void theShrinkableFileSystemCacheIsPurgeable_data();
    void theShrinkableFileSystemCacheIsPurgeable();
    void wiredIsNeverNegative();
    void optionalLinesMayBeMissing();
    void needsTotalAndFree_data();
    void needsTotalAndFree();
    void readsLinesStrictly_data();
    void readsLinesStrictly();
    void readsSwap_data();
    void readsSwap();
    void judgesPressure_data();
    void judgesPressure();
    void judgesPressureByWhatIsAvailable_data();
    void judgesPressureByWhatIsAvailable();
    void readsCompressedDisks_data();
    void readsCompressedDisks();
};

void TestProcMemInfo::readsEveryCount()
{
    const MemoryCounters counters = memoryCounters({.memInfo = wholeMachine});
    QCOMPARE(counters.pageSize, std::uint64_t(1024));
    QCOMPARE(counters.totalBytes, std::optional<std::uint64_t>(100'000 * 1024));
    QVERIFY(counters.pages);
    QCOMPARE(counters.pages->free, std::uint64_t(10'000));
    QCOMPARE(counters.pages->active, std::uint64_t(23'000));
    QCOMPARE(counters.pages->compressor, std::uint64_t(60));
    QCOMPARE(counters.pages->external, std::uint64_t(4500));
    QCOMPARE(counters.pages->purgeable, std::uint64_t(7));
    // external + purgeable = 4500 + 7
    QCOMPARE(counters.pages->inactive, std::uint64_t(4507));
    // MemTotal - free - active - compressor - inactive = 100000 - 10000 - 23000 - 60 - 4507
    QCOMPARE(counters.pages->wired, std::uint64_t(62'433));
    QVERIFY(counters.swap);
    QCOMPARE(counters.swap->total, std::uint64_t(9000 * 1024));
    QCOMPARE(counters.swap->used, std::uint64_t(7000 * 1024));
    QCOMPARE(counters.pressureLevel, Level(1));
    QCOMPARE(counters.availableBytes, std::optional<std::uint64_t>(50'000 * 1024));
}

void TestProcMemInfo::compressedDisksCountAsCompressor()
{
    const MemoryCounters counters =
        memoryCounters({.memInfo = wholeMachine, .zramBytes = 1000 * 1024});
    QCOMPARE(counters.pages->compressor, std::uint64_t(1060));
    QCOMPARE(counters.pages->wired, std::uint64_t(61'433));
}

void TestProcMemInfo::theShrinkableFileSystemCacheIsPurgeable_data()
{
    QTest::addColumn<QByteArray>("arcStats");
    QTest::addColumn<quint64>("shrinkableKiB");
    QTest::newRow("what is above the least size")
        << QByteArray("9 1 0x01 3 816 1 2\nname type data\nsize 4 3072000\nc_min 4 1024000\n")
        << quint64(2000);
    QTest::newRow("the lines in reverse order")
        << QByteArray("c_min   4    1024000\nsize    4    3072000\n") << quint64(2000);
    QTest::newRow("names are whole words")
        << QByteArray("size 4 3072000\ncompressed_size 4 9\nc_min 4 1024000\nc_min_x 4 1\n")
        << quint64(2000);
    QTest::newRow("no least size") << QByteArray("size 4 2048000\n") << quint64(2000);
    QTest::newRow("smaller than the least size")
        << QByteArray("size 4 1024\nc_min 4 2048\n") << quint64(0);
    QTest::newRow("a size that does not parse") << QByteArray("size 4 many\n") << quint64(0);
    QTest::newRow("more than 2^50 bytes") << QByteArray("size 4 1125899906842625\n") << quint64(0);
    QTest::newRow("a least size of more than 2^50 bytes")
        << QByteArray("size 4 2048000\nc_min 4 1125899906842625\n") << quint64(2000);
    QTest::newRow("cut in the size's line") << QByteArray("c_min 4 1024\nsize 4") << quint64(0);
    QTest::newRow("empty") << QByteArray() << quint64(0);
}

void TestProcMemInfo::theShrinkableFileSystemCacheIsPurgeable()
{
    QFETCH(QByteArray, arcStats);
    QFETCH(quint64, shrinkableKiB);
    const MemoryCounters counters =
        memoryCounters({.memInfo = wholeMachine, .arcStats = view(arcStats)});
    QCOMPARE(counters.pages->purgeable, 7 + shrinkableKiB);
    QCOMPARE(counters.pages->inactive, 4507 + shrinkableKiB);
    QCOMPARE(counters.pages->wired, 62'433 - shrinkableKiB);
}

void TestProcMemInfo::wiredIsNeverNegative()
{
    // The kernel counts one line after the other, so together they may exceed the total.
    const MemoryCounters counters = memoryCounters(
        {.memInfo =
             "MemTotal: 100 kB\nMemFree: 60 kB\nActive(anon): 30 kB\nInactive(file): 20 kB\n"});
    QVERIFY(counters.pages);
    QCOMPARE(counters.pages->wired, std::uint64_t(0));
    QCOMPARE(counters.pages->free, std::uint64_t(60));
    QCOMPARE(counters.pages->active, std::uint64_t(30));
    QCOMPARE(counters.pages->external, std::uint64_t(20));
}

void TestProcMemInfo::optionalLinesMayBeMissing()
{
    const MemoryCounters counters =
        memoryCounters({.memInfo = "MemTotal: 1000 kB\nMemFree: 100 kB\nSReclaimable: 40 kB"});
    QVERIFY(counters.pages);
    QCOMPARE(counters.pages->purgeable, std::uint64_t(40)); // In KReclaimable's place.
    QCOMPARE(counters.pages->compressor, std::uint64_t(0));
    QCOMPARE(counters.pages->wired, std::uint64_t(860));
    QVERIFY(!counters.swap);
    QVERIFY(!counters.pressureLevel);
    QVERIFY(!counters.availableBytes);
}

void TestProcMemInfo::needsTotalAndFree_data()
{
    QTest::addColumn<QByteArray>("memInfo");
    QTest::addColumn<bool>("hasTotal");
    QTest::newRow("no text") << QByteArray() << false;
    QTest::newRow("no total") << QByteArray("MemFree: 5 kB\nActive(anon): 5 kB\n") << false;
    QTest::newRow("no free") << QByteArray("MemTotal: 5 kB\nActive(anon): 5 kB\n") << true;
    QTest::newRow("a free count that does not parse")
        << QByteArray("MemTotal: 5 kB\nMemFree: x kB\n") << true;
    QTest::newRow("cut in the line of the free count")
        << QByteArray("MemTotal: 5000 kB\nMemFree:     12") << true;
    QTest::newRow("garbage") << QByteArray("\xff\xfe\0:\n:::\nkB\n", 12) << false;
}

void TestProcMemInfo::needsTotalAndFree()
{
    QFETCH(QByteArray, memInfo);
    const MemoryCounters counters = memoryCounters({.memInfo = view(memInfo)});
    QVERIFY(!counters.pages);
    QTEST(counters.totalBytes.has_value(), "hasTotal");
}

void TestProcMemInfo::readsLinesStrictly_data()
{
    using Total = std::optional<std::uint64_t>;
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<Total>("expected");
    QTest::newRow("one blank") << QByteArray("MemTotal: 5 kB") << Total(5 * 1024);
    QTest::newRow("another name") << QByteArray("MemTotalX: 5 kB") << Total();
    QTest::newRow("a longer name that ends in it") << QByteArray("XMemTotal: 5 kB") << Total();
}

void TestProcMemInfo::readsLinesStrictly()
{
    QFETCH(QByteArray, line);
    QTEST(memoryCounters({.memInfo = view(line)}).totalBytes, "expected");
}

void TestProcMemInfo::readsSwap_data()
{
    using Used = std::optional<std::uint64_t>;
    QTest::addColumn<QByteArray>("memInfo");
    QTest::addColumn<Used>("used");
    QTest::newRow("half used") << QByteArray("SwapTotal: 8 kB\nSwapFree: 4 kB\n") << Used(4096);
    QTest::newRow("none set up") << QByteArray("SwapTotal: 0 kB\nSwapFree: 0 kB\n") << Used(0);
    QTest::newRow("more free than there is")
        << QByteArray("SwapTotal: 4 kB\nSwapFree: 8 kB\n") << Used(0);
    QTest::newRow("no total") << QByteArray("SwapFree: 4 kB\n") << Used();
    QTest::newRow("no free") << QByteArray("SwapTotal: 4 kB\n") << Used();
}

void TestProcMemInfo::readsSwap()
{
    QFETCH(QByteArray, memInfo);
    const auto swap = memoryCounters({.memInfo = view(memInfo)}).swap;
    QTEST(swap ? std::optional(swap->used) : std::nullopt, "used");
}

void TestProcMemInfo::judgesPressure_data()
{
    QTest::addColumn<QByteArray>("pressure");
    QTest::addColumn<Level>("expected");
    const auto row = [](const char *name, const char *some, const char *full, Level expected) {
        QTest::newRow(name) << QByteArray("some avg10=") + some
                + " avg60=99.00 avg300=99.00 total=1\nfull avg10=" + full
                + " avg60=99.00 avg300=99.00 total=1\n"
                            << expected;
    };
    row("no waiting", "0.00", "0.00", 1);
    row("just below a tenth", "9.99", "9.99", 1);
    row("some wait a tenth", "10.00", "9.99", 2);
    row("some wait all the time", "100.00", "9.99", 2);
    row("all wait a tenth", "10.00", "10.00", 4);
    row("all wait, whatever the first line shows", "0.00", "10.00", 4);
    // Where the averages do not parse, the available half of the memory gives level 1.
    row("an average that does not parse", "x", "10.00", 1);
    row("an average that is no number", "nan", "0.00", 1);
    QTest::newRow("without the second line")
        << QByteArray("some avg10=10.00 avg60=0.00 avg300=0.00 total=1\n") << Level(2);
    QTest::newRow("cut in the second line")
        << QByteArray("some avg10=10.00 avg60=0.00 avg300=0.00 total=1\nfull av") << Level(2);
    QTest::newRow("cut in the first line") << QByteArray("some avg1") << Level(1);
    QTest::newRow("another field first")
        << QByteArray("some avg60=99.00 avg10=99.00\n") << Level(1);
    QTest::newRow("empty") << QByteArray() << Level(1);
}

void TestProcMemInfo::judgesPressure()
{
    QFETCH(QByteArray, pressure);
    QTEST(memoryCounters({.memInfo = wholeMachine, .pressure = view(pressure)}).pressureLevel,
          "expected");
}

void TestProcMemInfo::judgesPressureByWhatIsAvailable_data()
{
    QTest::addColumn<QByteArray>("memInfo");
    QTest::addColumn<Level>("expected");
    QTest::newRow("a tenth") << QByteArray("MemTotal: 1000 kB\nMemAvailable: 100 kB\n") << Level(1);
    QTest::newRow("below a tenth")
        << QByteArray("MemTotal: 1000 kB\nMemAvailable: 99 kB\n") << Level(2);
    QTest::newRow("a twentieth") << QByteArray("MemTotal: 1000 kB\nMemAvailable: 50 kB\n")
                                 << Level(2);
    QTest::newRow("below a twentieth")
        << QByteArray("MemTotal: 1000 kB\nMemAvailable: 49 kB\n") << Level(4);
    QTest::newRow("a tenth of a total that has none")
        << QByteArray("MemTotal: 1009 kB\nMemAvailable: 100 kB\n") << Level(2);
    QTest::newRow("a twentieth of a total that has none")
        << QByteArray("MemTotal: 1009 kB\nMemAvailable: 50 kB\n") << Level(4);
    QTest::newRow("the largest machine")
        << QByteArray("MemTotal: 1099511627776 kB\nMemAvailable: 1099511627776 kB\n") << Level(1);
    QTest::newRow("unknown") << QByteArray("MemTotal: 1000 kB\n") << Level();
    QTest::newRow("a total of 0") << QByteArray("MemTotal: 0 kB\nMemAvailable: 0 kB\n") << Level();
    QTest::newRow("an unknown total") << QByteArray("MemAvailable: 0 kB\n") << Level();
}

void TestProcMemInfo::judgesPressureByWhatIsAvailable()
{
    QFETCH(QByteArray, memInfo);
    QTEST(memoryCounters({.memInfo = view(memInfo)}).pressureLevel, "expected");
}

void TestProcMemInfo::readsCompressedDisks_data()
{
    QTest::addColumn<QByteArray>("mmStat");
    QTest::addColumn<quint64>("expected");
    QTest::newRow("nine columns") << QByteArray(
        " 4294967296  1073741824  1105199104        0 1105199104    12345        0 "
        "     678      700\n") << quint64(1'105'199'104);
    QTest::newRow("eight columns") << QByteArray("1 2 3 4 5 6 7 8\n") << quint64(3);
    QTest::newRow("more columns than any kernel has today")
        << QByteArray("1 2 3 4 5 6 7 8 9 10 x\n") << quint64(3);
    QTest::newRow("never set up") << QByteArray("0 0 0 0 0 0 0 0 0\n") << quint64(0);
    QTest::newRow("too few columns") << QByteArray("1 2 3 4 5 6 7\n") << quint64(0);
    QTest::newRow("a column that does not parse") << QByteArray("1 2 3 x 5 6 7 8\n") << quint64(0);
    QTest::newRow("2^50 bytes") << QByteArray("1 2 1125899906842624 4 5 6 7 8\n")
                                << (quint64(1) << 50);
    QTest::newRow("spread over two lines") << QByteArray("1 2 3 4\n5 6 7 8\n") << quint64(0);
    QTest::newRow("empty") << QByteArray() << quint64(0);
}

void TestProcMemInfo::readsCompressedDisks()
{
    QFETCH(QByteArray, mmStat);
    QTEST(quint64(zramMemory(view(mmStat))), "expected");
}

QTEST_APPLESS_MAIN(TestProcMemInfo)
#include "tst_ProcMemInfo.moc"
