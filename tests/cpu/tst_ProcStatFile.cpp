#include "cpu/ProcStatFile_linux.h"

#include "cpu/CPUCoreSampler.h"
#include "support/Machines.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

using Ticks = std::vector<CoreTicks>;

} // namespace

class TestProcStatFile : public QObject {
    Q_OBJECT

private slots:
    void readsMachines_data();
    void readsMachines();
    void followsCoresThatComeAndGo();
    void hasNoTicksWithoutTheFile();
    void readsThisMachine();
};

/// user; system + irq + softirq + steal; idle + iowait; nice, each modulo 2^32.
void TestProcStatFile::readsMachines_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("processors");
    QTest::addColumn<int>("processor");
    QTest::addColumn<CoreTicks>("expected");

    // cpu0 180000 900 41000 2600000 1200 1850 5200 0 0 0
    QTest::newRow("a laptop's fast core that serves interrupts")
        << u"laptop-hybrid-zram"_s << 16 << 0
        << CoreTicks{.user = 180'000, .system = 48'050, .idle = 2'601'200, .nice = 900};
    // cpu0 1500000000 250000 300000000 4294967290 5000000 2000000 9000000 0 700000000 1234:
    // idle + iowait = 4299967290 = 2^32 + 4999994
    QTest::newRow("a server's core, idle beyond 32 bits")
        << u"server-offline-core"_s << 96 << 0
        << CoreTicks{
               .user = 1'500'000'000, .system = 311'000'000, .idle = 4'999'994, .nice = 250'000};
    QTest::newRow("a server's offline core") << u"server-offline-core"_s << 96 << 37 << CoreTicks{};
    // cpu4 90004 100 9004 399996 700 0 200 0 0 0
    QTest::newRow("a board's large core")
        << u"arm-board"_s << 6 << 4
        << CoreTicks{.user = 90'004, .system = 9204, .idle = 400'696, .nice = 100};
    // cpu3 300003 5000 80000 1900006 20000 10 400 1234 0 0
    QTest::newRow("a core whose host stole time")
        << u"kernel-without-psi"_s << 4 << 3
        << CoreTicks{.user = 300'003, .system = 81'644, .idle = 1'920'006, .nice = 5000};
}

void TestProcStatFile::readsMachines()
{
    QFETCH(QString, name);
    QFETCH(int, processors);
    QFETCH(int, processor);
    QFETCH(CoreTicks, expected);
    ProcStatFile file(machine(name.toStdString()));
    const auto ticks = file.read();
    QVERIFY(ticks);
    QCOMPARE(ticks->size(), std::size_t(processors));
    QVERIFY((*ticks)[std::size_t(processor)] == expected);
    QVERIFY(file.read() == ticks); // The text is the same, so nothing has moved.
}

void TestProcStatFile::followsCoresThatComeAndGo()
{
    const QTemporaryDir root;
    QVERIFY(QDir().mkpath(root.filePath(u"proc"_s)));
    const auto setStat = [&root](const QByteArray &contents) {
        QFile stat(root.filePath(u"proc/stat"_s));
        QVERIFY(stat.open(QIODevice::WriteOnly));
        QCOMPARE(stat.write(contents), contents.size());
    };
    ProcStatFile file(root.path().toStdString());
    QVERIFY(!file.read());
    setStat("cpu  9 0 0 9\ncpu0 5 0 0 5\ncpu1 4 0 0 4\nintr 1\n");
    QVERIFY(file.read() == Ticks({{.user = 5, .idle = 5}, {.user = 4, .idle = 4}}));
    setStat("cpu  9 0 0 9\ncpu1 6 0 0 4\nintr 1\n");
    QVERIFY(file.read() == Ticks({{.user = 5, .idle = 5}, {.user = 6, .idle = 4}}));
    setStat("");
    QVERIFY(!file.read());
    setStat("cpu  9 0 0 9\ncpu0 7 0 0 5\ncpu1 6 0 0 9\nintr 1\n");
    QVERIFY(file.read() == Ticks({{.user = 7, .idle = 5}, {.user = 6, .idle = 9}}));
}

void TestProcStatFile::hasNoTicksWithoutTheFile()
{
    const QTemporaryDir root;
    ProcStatFile file(root.path().toStdString());
    QVERIFY(!file.read());
}

void TestProcStatFile::readsThisMachine()
{
    ProcStatFile file;
    CPUCoreSampler sampler([&file] { return file.read(); });
    const std::vector<double> first = sampler.sample();
    QVERIFY(first.size() >= std::size_t(sysconf(_SC_NPROCESSORS_ONLN)));
    QCOMPARE(first, std::vector<double>(first.size(), 0.0));
    for (int i = 0; i < 100; ++i) {
        for (const double fraction : sampler.sample())
            QVERIFY(fraction >= 0 && fraction <= 1);
    }
}

QTEST_APPLESS_MAIN(TestProcStatFile)
#include "tst_ProcStatFile.moc"
