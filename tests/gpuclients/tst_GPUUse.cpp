#include "gpuclients/GPUUse.h"

#include <QTest>

using namespace corvane;

class TestGPUUse : public QObject {
    Q_OBJECT

private slots:
    void theLargerOfTwoSourcesStands();
    void sourcesCompleteEachOther();
    void ordersByDeviceAndProcess();
};

void TestGPUUse::theLargerOfTwoSourcesStands()
{
    const auto uses = mergedUses({{"card", {.pid = 7, .bytes = 500, .busyFraction = 0.5}},
                                  {"card", {.pid = 7, .bytes = 400, .busyFraction = 0.6}}});
    QCOMPARE(uses.size(), std::size_t(1));
    QVERIFY((uses[0] == GPUUse{"card", {.pid = 7, .bytes = 500, .busyFraction = 0.6}}));
}

void TestGPUUse::sourcesCompleteEachOther()
{
    const auto uses =
        mergedUses({{"card", {.pid = 7, .bytes = 500}}, {"card", {.pid = 7, .busyFraction = 0.0}}});
    QCOMPARE(uses.size(), std::size_t(1));
    QVERIFY((uses[0] == GPUUse{"card", {.pid = 7, .bytes = 500, .busyFraction = 0.0}}));
}

void TestGPUUse::ordersByDeviceAndProcess()
{
    const auto uses =
        mergedUses({{"b", {.pid = 1}}, {"a", {.pid = 9}}, {"a", {.pid = 2}}, {"b", {.pid = 1}}});
    QCOMPARE(uses.size(), std::size_t(3));
    QCOMPARE(uses[0].use.pid, 2);
    QCOMPARE(uses[1].use.pid, 9);
    QCOMPARE(uses[2].device, std::string("b"));
}

QTEST_GUILESS_MAIN(TestGPUUse)
#include "tst_GPUUse.moc"
