#include "gpuclients/GPUShares.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

using Pids = std::vector<std::int32_t>;

namespace {

GPUUse use(const char *device, std::int32_t pid, std::optional<std::uint64_t> bytes,
           std::optional<double> fraction = std::nullopt)
{
    return {device, {.pid = pid, .bytes = bytes, .busyFraction = fraction}};
}

QString name(std::int32_t pid)
{
    return u"process %1"_s.arg(pid);
}

} // namespace

class TestGPUShares : public QObject {
    Q_OBJECT

private slots:
    void addsUpProcesses_data();
    void addsUpProcesses();
    void knowsWhoLeavesAGPUUnused();
    void findsWhoHoldsMuch();
    void tellsWhoHoldsEachGPU();
    void tellsNothingOfAGPUWithoutKnownMemory();
};

void TestGPUShares::addsUpProcesses_data()
{
    QTest::addColumn<Pids>("pids");
    QTest::addColumn<qint64>("bytes");    // Negative: absent.
    QTest::addColumn<double>("fraction"); // The same.
    QTest::newRow("one GPU") << Pids{1} << qint64(100) << 0.25;
    QTest::newRow("two GPUs: the mean load") << Pids{2} << qint64(300) << 0.75;
    QTest::newRow("two processes on one GPU") << Pids{1, 5} << qint64(150) << 0.5;
    QTest::newRow("more than all of the time of a GPU") << Pids{2, 6} << qint64(300) << 1.0;
    QTest::newRow("no memory told") << Pids{3} << qint64(-1) << 0.0;
    QTest::newRow("no load told") << Pids{4} << qint64(7) << -1.0;
    QTest::newRow("a process without any use") << Pids{99} << qint64(-1) << -1.0;
    QTest::newRow("no process") << Pids{} << qint64(-1) << -1.0;
}

void TestGPUShares::addsUpProcesses()
{
    QFETCH(Pids, pids);
    const GPUShares shares({use("a", 1, 100, 0.25), use("a", 2, 100, 1.0), use("b", 2, 200, 0.5),
                            use("a", 3, std::nullopt, 0.0), use("b", 4, 7), use("a", 5, 50, 0.25),
                            use("b", 6, std::nullopt, 0.75)});
    const GPUShare share = shares.of(pids);
    QTEST(share.bytes ? qint64(*share.bytes) : -1, "bytes");
    QTEST(share.fraction.value_or(-1), "fraction");
}

void TestGPUShares::knowsWhoLeavesAGPUUnused()
{
    const GPUUse drawing = use("a", 1, 100, 0.0);
    const GPUUse computing = {"a", {.pid = 2, .bytes = 100, .hidesLoad = true}};
    const GPUUse unused = {"a", {.pid = 3, .bytes = 100, .isUnused = true}};
    const GPUShares shares({drawing, computing, unused, use("b", 2, 100, 0.5)});
    QCOMPARE(shares.of({1}).fraction, std::optional(0.0));
    QCOMPARE(shares.of({3}).fraction, std::optional(0.0));
    QCOMPARE(shares.of({2}).fraction, std::optional(0.5)); // Of the other GPU alone.
    QVERIFY(!GPUShares({drawing, computing}).of({1, 2}).fraction);
}

void TestGPUShares::findsWhoHoldsMuch()
{
    const GPUShares shares({use("a", 1, 100), use("b", 1, 100), use("a", 2, 150),
                            use("a", 3, std::nullopt), use("a", 4, 200)});
    QCOMPARE(shares.holding(200), (Pids{1, 4}));
}

void TestGPUShares::tellsWhoHoldsEachGPU()
{
    const auto holders = gpuHolders(
        {use("a", 1, 100), use("a", 2, 500), use("a", 3, 200), use("b", 3, 7)}, {1, 3}, name);
    QCOMPARE(holders.size(), std::size_t(2));
    QVERIFY((holders[0] == GPUHolders{u"a"_s, 300, u"process 2"_s, 500, 800}));
    QVERIFY((holders[1] == GPUHolders{u"b"_s, 7, u"process 3"_s, 7, 7}));
}

void TestGPUShares::tellsNothingOfAGPUWithoutKnownMemory()
{
    QVERIFY(gpuHolders({use("a", 1, std::nullopt, 0.5)}, {1}, name).empty());
    const auto holders = gpuHolders({use("a", 1, 0)}, {1}, name);
    QCOMPARE(holders.size(), std::size_t(1));
    QVERIFY((holders[0] == GPUHolders{.device = u"a"_s}));
}

QTEST_GUILESS_MAIN(TestGPUShares)
#include "tst_GPUShares.moc"
