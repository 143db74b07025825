#include "gpu/GPUHandOver.h"

#include <QTest>

using namespace corvane;

class TestGPUHandOver : public QObject {
    Q_OBJECT

private slots:
    void handsOverWhatWasPublishedLast();
    void isAskedForSomeSeconds();
    void keepsSumsForSomeSeconds();
};

void TestGPUHandOver::handsOverWhatWasPublishedLast()
{
    GPUHandOver handOver;
    QVERIFY(handOver.ask(1).empty());
    handOver.publish({{.device = "first"}});
    handOver.publish({{.device = "second", .state = GPUAccess::State::asleep}});
    const auto gpus = handOver.ask(2);
    QCOMPARE(gpus.size(), std::size_t(1));
    QCOMPARE(gpus[0].device, std::string("second"));
    QVERIFY(gpus[0].state == GPUAccess::State::asleep);
}

void TestGPUHandOver::isAskedForSomeSeconds()
{
    GPUHandOver handOver;
    QVERIFY(!handOver.isAsked(0));
    handOver.ask(100);
    QVERIFY(handOver.isAsked(100));
    QVERIFY(handOver.isAsked(108));
    QVERIFY(!handOver.isAsked(109));
}

void TestGPUHandOver::keepsSumsForSomeSeconds()
{
    using Bytes = std::optional<std::uint64_t>;
    GPUHandOver handOver;
    QCOMPARE(handOver.heldBytes("card", 0), Bytes());
    handOver.setHeldBytes({{"card", 5000}}, 100);
    QCOMPARE(handOver.heldBytes("card", 108), Bytes(5000));
    QCOMPARE(handOver.heldBytes("other", 108), Bytes());
    QCOMPARE(handOver.heldBytes("card", 109), Bytes());
    handOver.setHeldBytes({}, 110);
    QCOMPARE(handOver.heldBytes("card", 110), Bytes());
}

QTEST_GUILESS_MAIN(TestGPUHandOver)
#include "tst_GPUHandOver.moc"
