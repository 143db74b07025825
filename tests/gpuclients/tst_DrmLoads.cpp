#include "gpuclients/DrmLoads.h"

#include <QTest>

Q_DECLARE_METATYPE(corvane::DrmClient)

using namespace corvane;

using Shares = std::map<std::string, double>;

namespace {

constexpr std::uint64_t second = 1'000'000'000;

DrmClient withEngine(const DrmEngine &engine, const std::string &id = "1")
{
    return {.address = "0000:c1:00.0", .id = id, .engines = {engine}};
}

DrmClient busyFor(std::uint64_t nanoseconds, const std::string &id = "1")
{
    return withEngine({.name = "gfx", .busy = nanoseconds}, id);
}

DrmClient cycles(std::uint64_t busy, std::uint64_t total, std::uint64_t capacity = 1)
{
    return withEngine({.name = "rcs", .busy = busy, .total = total, .capacity = capacity});
}

} // namespace

class TestDrmLoads : public QObject {
    Q_OBJECT

private slots:
    void theFirstLookTellsNothing();
    void sharesTheTimeBetweenTwoLooks_data();
    void sharesTheTimeBetweenTwoLooks();
    void keepsTheLargerCounter();
    void twoLooksAtOnceAreOne();
    void anEngineThatBeginsToWorkHasBegunAtZero();
    void tellsClientsApart();
    void forgetsClientsThatAreGone();
};

void TestDrmLoads::theFirstLookTellsNothing()
{
    DrmLoads loads;
    QVERIFY(loads.add(busyFor(5 * second), 100).empty());
    QVERIFY(loads.add(withEngine({.name = "rcs", .busy = 5, .total = 10}, "2"), 100).empty());
    // But for a driver that tells shares itself.
    QVERIFY(
        (loads.add(withEngine({.name = "gfx0", .share = 0.5}, "3"), 100) == Shares{{"gfx0", 0.5}}));
}

void TestDrmLoads::sharesTheTimeBetweenTwoLooks_data()
{
    QTest::addColumn<DrmClient>("before");
    QTest::addColumn<DrmClient>("after");
    QTest::addColumn<double>("share");
    QTest::newRow("a quarter of four seconds") << busyFor(second) << busyFor(2 * second) << 0.25;
    QTest::newRow("idle") << busyFor(second) << busyFor(second) << 0.0;
    QTest::newRow("more than the time that passed")
        << busyFor(second) << busyFor(9 * second) << 1.0;
    QTest::newRow("a counter that stepped back") << busyFor(second) << busyFor(5) << 0.0;
    QTest::newRow("one of two engines")
        << withEngine({.name = "vcs", .busy = 0, .capacity = 2})
        << withEngine({.name = "vcs", .busy = 4 * second, .capacity = 2}) << 0.5;
    QTest::newRow("cycles of cycles, whatever the time")
        << cycles(100, 1000) << cycles(130, 1100) << 0.3;
    QTest::newRow("cycles of two engines") << cycles(0, 1000, 2) << cycles(100, 1100, 2) << 0.5;
    QTest::newRow("no cycles passed") << cycles(100, 1000) << cycles(100, 1000) << 0.0;
    QTest::newRow("a counter of cycles that stepped back")
        << cycles(100, 1000) << cycles(120, 900) << 0.0;
}

void TestDrmLoads::sharesTheTimeBetweenTwoLooks()
{
    QFETCH(DrmClient, before);
    QFETCH(DrmClient, after);
    QFETCH(double, share);
    DrmLoads loads;
    loads.add(before, 100);
    const Shares shares = loads.add(after, 104);
    QCOMPARE(shares.size(), std::size_t(1));
    QVERIFY(qAbs(shares.begin()->second - share) < 1e-9);
}

void TestDrmLoads::keepsTheLargerCounter()
{
    DrmLoads loads;
    loads.add(busyFor(10 * second), 100);
    loads.add(busyFor(1 * second), 104);
    QVERIFY((loads.add(busyFor(11 * second), 108) == Shares{{"gfx", 0.25}}));
}

void TestDrmLoads::twoLooksAtOnceAreOne()
{
    DrmLoads loads;
    loads.add(busyFor(0), 100);
    QVERIFY((loads.add(busyFor(second), 104) == Shares{{"gfx", 0.25}}));
    QVERIFY((loads.add(busyFor(second + 1000), 104.1) == Shares{{"gfx", 0.25}}));
    QVERIFY((loads.add(busyFor(3 * second), 108) == Shares{{"gfx", 0.5}}));
}

void TestDrmLoads::anEngineThatBeginsToWorkHasBegunAtZero()
{
    DrmLoads loads;
    loads.add({.address = "0000:c1:00.0", .id = "1"}, 100); // Idle engines have no line.
    QVERIFY((loads.add(busyFor(second), 104) == Shares{{"gfx", 0.25}}));
}

void TestDrmLoads::tellsClientsApart()
{
    DrmLoads loads;
    loads.add(busyFor(0, "1"), 100);
    loads.add(busyFor(0, "2"), 100);
    QVERIFY((loads.add(busyFor(second, "1"), 104) == Shares{{"gfx", 0.25}}));
    QVERIFY((loads.add(busyFor(2 * second, "2"), 104) == Shares{{"gfx", 0.5}}));
}

void TestDrmLoads::forgetsClientsThatAreGone()
{
    DrmLoads loads;
    loads.add(busyFor(second), 100);
    loads.forgetOld(150);
    QVERIFY(!loads.add(busyFor(second), 160).empty());
    loads.forgetOld(221);
    QVERIFY(loads.add(busyFor(second), 222).empty());
}

QTEST_GUILESS_MAIN(TestDrmLoads)
#include "tst_DrmLoads.moc"
