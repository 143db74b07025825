#include "gpu/GPUSleepGate.h"

#include <QTest>

using namespace corvane;

using Text = std::optional<std::string_view>;
using Seconds = std::optional<double>;

Q_DECLARE_METATYPE(Text)
Q_DECLARE_METATYPE(Seconds)

class TestGPUSleepGate : public QObject {
    Q_OBJECT

private slots:
    void admitsByStatus_data();
    void admitsByStatus();
    void isQuietAfterThreeIdleTicks();
    void workBetweenStartsTheCountAnew();
    void afterAQuietTimeOneIdleReadingIsEnough();
    void workAfterAQuietTimeNeedsThreeIdleTicksAgain();
    void sleepForgetsTheCount();
    void quietTime_data();
    void quietTime();
};

void TestGPUSleepGate::admitsByStatus_data()
{
    QTest::addColumn<Text>("status");
    QTest::addColumn<bool>("admitted");
    QTest::newRow("active") << Text("active\n") << true;
    QTest::newRow("cannot sleep") << Text("unsupported\n") << true;
    QTest::newRow("no such file") << Text() << true;
    QTest::newRow("asleep") << Text("suspended\n") << false;
    QTest::newRow("falling asleep") << Text("suspending\n") << false;
    QTest::newRow("waking up") << Text("resuming\n") << false;
    QTest::newRow("in error") << Text("error\n") << false;
    QTest::newRow("garbage") << Text("\x01\x02") << false;
}

void TestGPUSleepGate::admitsByStatus()
{
    QFETCH(Text, status);
    GPUSleepGate gate;
    QTEST(gate.admits(status), "admitted");
}

void TestGPUSleepGate::isQuietAfterThreeIdleTicks()
{
    GPUSleepGate gate;
    QVERIFY(!gate.isQuiet(0));
    QVERIFY(!gate.isQuietDue(true));
    QVERIFY(!gate.isQuietDue(true));
    QVERIFY(gate.isQuietDue(true));
    gate.keepQuietUntil(10);
    QVERIFY(gate.isQuiet(2));
    QVERIFY(gate.isQuiet(9.9));
    QVERIFY(!gate.isQuiet(10));
}

void TestGPUSleepGate::workBetweenStartsTheCountAnew()
{
    GPUSleepGate gate;
    for (const bool idle : {true, true, false, true, true})
        QVERIFY(!gate.isQuietDue(idle));
    QVERIFY(gate.isQuietDue(true));
}

void TestGPUSleepGate::afterAQuietTimeOneIdleReadingIsEnough()
{
    GPUSleepGate gate;
    gate.keepQuietUntil(10);
    QVERIFY(gate.admits("active\n"));
    QVERIFY(gate.isQuietDue(true));
}

void TestGPUSleepGate::workAfterAQuietTimeNeedsThreeIdleTicksAgain()
{
    GPUSleepGate gate;
    gate.keepQuietUntil(10);
    QVERIFY(!gate.isQuietDue(false));
    QVERIFY(!gate.isQuietDue(true));
    QVERIFY(!gate.isQuietDue(true));
    QVERIFY(gate.isQuietDue(true));
}

void TestGPUSleepGate::sleepForgetsTheCount()
{
    GPUSleepGate gate;
    gate.keepQuietUntil(10);
    QVERIFY(!gate.admits("suspended\n"));
    QVERIFY(gate.admits("active\n"));
    QVERIFY(!gate.isQuietDue(true)); // Something woke it: it has its three ticks.
    QVERIFY(!gate.isQuietDue(true));
    QVERIFY(gate.isQuietDue(true));
}

void TestGPUSleepGate::quietTime_data()
{
    QTest::addColumn<Text>("status");
    QTest::addColumn<Text>("control");
    QTest::addColumn<Text>("delay");
    QTest::addColumn<Seconds>("seconds");
    const Text active("active\n");
    const Text automatic("auto\n");
    QTest::newRow("three seconds longer than the countdown")
        << active << automatic << Text("5000\n") << Seconds(8);
    QTest::newRow("no countdown of the kernel") << active << automatic << Text() << Seconds(9);
    QTest::newRow("a countdown that does not parse")
        << active << automatic << Text("soon\n") << Seconds(9);
    QTest::newRow("never by itself") << active << automatic << Text("-1\n") << Seconds();
    QTest::newRow("kept on") << active << Text("on\n") << Text("5000\n") << Seconds();
    QTest::newRow("cannot sleep") << Text("unsupported\n") << automatic << Text("5000\n")
                                  << Seconds();
    QTest::newRow("no power management") << Text() << Text() << Text() << Seconds();
    QTest::newRow("no permission to sleep") << active << Text() << Text("5000\n") << Seconds();
}

void TestGPUSleepGate::quietTime()
{
    QFETCH(Text, status);
    QFETCH(Text, control);
    QFETCH(Text, delay);
    QTEST(gpuQuietSeconds(status, control, delay), "seconds");
}

QTEST_GUILESS_MAIN(TestGPUSleepGate)
#include "tst_GPUSleepGate.moc"
