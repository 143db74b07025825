#include "gpu/GPUReading.h"

#include <QTest>

using namespace corvane;

using Number = std::optional<double>;

Q_DECLARE_METATYPE(GPUReading)
Q_DECLARE_METATYPE(Number)

class TestGPUReading : public QObject {
    Q_OBJECT

private slots:
    void measuresLoad_data();
    void measuresLoad();
    void measuresPower_data();
    void measuresPower();
    void recognizesIdleGPUs_data();
    void recognizesIdleGPUs();
    void needsAnEarlierReading();
};

void TestGPUReading::measuresLoad_data()
{
    QTest::addColumn<GPUReading>("before");
    QTest::addColumn<GPUReading>("now");
    QTest::addColumn<Number>("share");
    const GPUReading start = {.seconds = 10, .idleMilliseconds = 5000};
    QTest::newRow("the device's own share")
        << GPUReading{} << GPUReading{.busyFraction = 0.4} << Number(0.4);
    QTest::newRow("idle for a quarter of a second")
        << start << GPUReading{.seconds = 11, .idleMilliseconds = 5250} << Number(0.75);
    QTest::newRow("idle all the time")
        << start << GPUReading{.seconds = 11, .idleMilliseconds = 6000} << Number(0);
    QTest::newRow("the counter ran ahead")
        << start << GPUReading{.seconds = 11, .idleMilliseconds = 6100} << Number(0);
    QTest::newRow("the counter ran back")
        << start << GPUReading{.seconds = 11, .idleMilliseconds = 10} << Number(1);
    QTest::newRow("no time passed")
        << start << GPUReading{.seconds = 10, .idleMilliseconds = 5000} << Number();
    QTest::newRow("the counter is gone") << start << GPUReading{.seconds = 11} << Number();
    QTest::newRow("the counter is new")
        << GPUReading{.seconds = 10} << GPUReading{.seconds = 11, .idleMilliseconds = 6}
        << Number();
}

void TestGPUReading::measuresLoad()
{
    QFETCH(GPUReading, before);
    QFETCH(GPUReading, now);
    QTEST(gpuBusyShare(&before, now), "share");
}

void TestGPUReading::measuresPower_data()
{
    QTest::addColumn<GPUReading>("before");
    QTest::addColumn<GPUReading>("now");
    QTest::addColumn<Number>("watts");
    const GPUReading start = {.seconds = 10, .microjoules = 1'000'000};
    QTest::newRow("the mean power by a counter")
        << start << GPUReading{.seconds = 12, .microjoules = 61'000'000} << Number(30);
    QTest::newRow("a counter comes before the power")
        << start << GPUReading{.seconds = 12, .microjoules = 1'000'000, .watts = 9} << Number(0);
    QTest::newRow("a counter that started again leaves the power")
        << start << GPUReading{.seconds = 12, .microjoules = 5, .watts = 9} << Number(9);
    QTest::newRow("no new value leaves the power")
        << start << GPUReading{.seconds = 10, .microjoules = 1'000'000, .watts = 9} << Number(9);
    QTest::newRow("the power alone")
        << GPUReading{} << GPUReading{.seconds = 12, .watts = 40} << Number(40);
    QTest::newRow("neither") << GPUReading{} << GPUReading{.seconds = 12} << Number();
    QTest::newRow("no new value and no power")
        << start << GPUReading{.seconds = 10, .microjoules = 1'000'000} << Number();
}

void TestGPUReading::measuresPower()
{
    QFETCH(GPUReading, before);
    QFETCH(GPUReading, now);
    QTEST(gpuWatts(&before, now), "watts");
}

void TestGPUReading::recognizesIdleGPUs_data()
{
    QTest::addColumn<GPUReading>("before");
    QTest::addColumn<GPUReading>("now");
    QTest::addColumn<bool>("idle");
    const GPUReading start = {.seconds = 10, .idleMilliseconds = 5000};
    QTest::newRow("less than 1 % is idle")
        << GPUReading{} << GPUReading{.busyFraction = 0.009} << true;
    QTest::newRow("1 % is not") << GPUReading{} << GPUReading{.busyFraction = 0.01} << false;
    QTest::newRow("idle all the time")
        << start << GPUReading{.seconds = 11, .idleMilliseconds = 6000} << true;
    QTest::newRow("idle half of the time")
        << start << GPUReading{.seconds = 11, .idleMilliseconds = 5500} << false;
    QTest::newRow("an idle time without an earlier one counts as busy")
        << GPUReading{} << GPUReading{.seconds = 11, .idleMilliseconds = 5500} << false;
    QTest::newRow("a GPU without any load counts as idle")
        << start << GPUReading{.seconds = 11} << true;
}

void TestGPUReading::recognizesIdleGPUs()
{
    QFETCH(GPUReading, before);
    QFETCH(GPUReading, now);
    QTEST(wasIdle(&before, now), "idle");
}

void TestGPUReading::needsAnEarlierReading()
{
    const GPUReading now = {.seconds = 11, .idleMilliseconds = 6000, .microjoules = 7};
    QVERIFY(!gpuBusyShare(nullptr, now));
    QVERIFY(!gpuWatts(nullptr, now));
}

QTEST_GUILESS_MAIN(TestGPUReading)
#include "tst_GPUReading.moc"
