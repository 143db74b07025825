#include "models/IdleTimes.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

using Seconds = std::optional<std::int64_t>;

class TestIdleTimes : public QObject {
    Q_OBJECT

private slots:
    void countsWhileTheGPUIsUnused();
    void endsWithTheUse();
    void countsNothingThatIsNotKnown();
    void countsNothingOfAModelThatIsNotOnTheGPU();
    void beginsAnewAfterAPause();
    void tellsProcessesOfOneNumberApart();

private:
    /// What a survey at that time tells of a workload with that load.
    Seconds at(double time, std::optional<double> load, std::uint64_t startTime = 1)
    {
        m_now = time;
        std::vector<AIWorkload> workloads{{.pid = 7, .gpuFraction = load, .startTime = startTime}};
        m_idle.add(workloads);
        return workloads.front().details.idleSeconds;
    }

    double m_now = 0;
    IdleTimes m_idle{[this] { return m_now; }};
};

void TestIdleTimes::countsWhileTheGPUIsUnused()
{
    QCOMPARE(at(1000, 0.0), Seconds(0));
    for (int survey = 1; survey <= 240; ++survey)
        QCOMPARE(at(1000 + 3 * survey, survey % 2 ? 0.0 : 0.009), Seconds(3 * survey));
}

void TestIdleTimes::endsWithTheUse()
{
    at(2000, 0.0);
    QCOMPARE(at(2003, 0.0), Seconds(3));
    QVERIFY(!at(2006, 0.01));
    QCOMPARE(at(2009, 0.0), Seconds(0));
}

void TestIdleTimes::countsNothingThatIsNotKnown()
{
    at(3000, 0.0);
    QVERIFY(!at(3003, {}));
    QCOMPARE(at(3006, 0.0), Seconds(0));
    std::vector<AIWorkload> none;
    m_idle.add(none);
    QVERIFY(none.empty());
}

void TestIdleTimes::countsNothingOfAModelThatIsNotOnTheGPU()
{
    for (const std::uint64_t mebibytes : {0, 199, 200}) {
        std::vector<AIWorkload> workloads{
            {.pid = 8, .gpuMemory = mebibytes << 20, .gpuFraction = 0.0}};
        m_idle.add(workloads);
        QCOMPARE(workloads.front().details.idleSeconds.has_value(), mebibytes == 200);
    }
}

/// While nobody looked it may have worked.
void TestIdleTimes::beginsAnewAfterAPause()
{
    at(4000, 0.0);
    QCOMPARE(at(4012, 0.0), Seconds(12));
    QCOMPARE(at(4025, 0.0), Seconds(0));
}

void TestIdleTimes::tellsProcessesOfOneNumberApart()
{
    at(5000, 0.0, 1);
    QCOMPARE(at(5003, 0.0, 2), Seconds(0));
    QCOMPARE(at(5006, 0.0, 2), Seconds(3));
}

QTEST_APPLESS_MAIN(TestIdleTimes)
#include "tst_IdleTimes.moc"
