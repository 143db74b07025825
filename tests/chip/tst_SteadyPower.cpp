#include "chip/SteadyPower.h"

#include <QTest>

#include <algorithm>
#include <cmath>

using namespace corvane;

using enum SteadyWatts::Standstill;

namespace {

/// A counter of a part that takes constant watts, published every so many seconds, as ticks of one
/// second see it. `phase` is when it is published first.
class PublishedCounter {
public:
    PublishedCounter(double watts, double every, double phase)
        : m_watts(watts),
          m_every(every),
          m_phase(phase)
    {
    }

    /// Joules that became visible in the next second.
    double nextTick()
    {
        const double before = published();
        ++m_time;
        return published() - before;
    }

private:
    double published() const
    {
        return m_time < m_phase
            ? 0
            : m_watts * (m_phase + std::floor((m_time - m_phase) / m_every + 1e-9) * m_every);
    }

    double m_watts;
    double m_every;
    double m_phase;
    double m_time = 0;
};

ChipReading tick(double cpuWatts, double gpuWatts, double aneWatts, double gpuLoad = 0.5)
{
    return {.cpuWatts = cpuWatts,
            .gpuWatts = gpuWatts,
            .aneWatts = aneWatts,
            .cpuActiveFraction = 0.3,
            .gpuActiveFraction = gpuLoad};
}

ChipReading applied(SteadyPower &power, ChipReading reading, double seconds = 1)
{
    power.apply(reading, seconds);
    return reading;
}

} // namespace

class TestSteadyPower : public QObject {
    Q_OBJECT

private slots:
    void leavesACounterThatMovesEveryTick();
    void steadiesBatches_data();
    void steadiesBatches();
    void followsAChangeOfTheLoad();
    void holdsForFiveSecondsAndThenDenies();
    void goesOnWhenACounterMovesAgain();
    void deniesWhatNeverMoved();
    void doesNotHoldTheFirstBatch();
    void showsAnIdlePartAsZero_data();
    void showsAnIdlePartAsZero();
    void holdsAnIdlePartWhoseBatchIsPending();
    void readsANeuralEngineThatRests();
    void deniesTheNeuralEngineWithTheCPU();
    void keepsAPartWhoseOwnCounterMoves();
    void countsTicksOfAnyLength();
};

void TestSteadyPower::leavesACounterThatMovesEveryTick()
{
    SteadyWatts part;
    for (const double joules : {2.5, 0.1, 40.0, 7.0})
        QCOMPARE(part.add(joules, 1, working).value(), joules);
    QCOMPARE(part.add(3, 2, working).value(), 1.5);
}

void TestSteadyPower::steadiesBatches_data()
{
    QTest::addColumn<double>("every");
    QTest::addColumn<double>("phase");
    QTest::addColumn<double>("most"); // Relative error.
    QTest::newRow("every 1.3 s") << 1.3 << 0.4 << 0.1;
    QTest::newRow("every 1.3 s, first after the start") << 1.3 << 1.2 << 0.1;
    QTest::newRow("every 2 s") << 2.0 << 2.0 << 0.01;
    QTest::newRow("every 2.1 s") << 2.1 << 0.7 << 0.2;
    QTest::newRow("every 2.3 s") << 2.3 << 1.9 << 0.2;
}

void TestSteadyPower::steadiesBatches()
{
    QFETCH(double, every);
    QFETCH(double, phase);
    QFETCH(double, most);
    SteadyWatts part;
    PublishedCounter counter(20, every, phase);
    double sum = 0;
    constexpr int settling = 8;
    constexpr int ticks = 300;
    for (int second = 0; second < ticks; ++second) {
        const auto watts = part.add(counter.nextTick(), 1, working);
        if (second < settling)
            continue;
        QVERIFY(watts);
        QVERIFY2(std::abs(*watts / 20 - 1) <= most, qPrintable(QString::number(*watts)));
        sum += *watts;
    }
    QVERIFY(std::abs(sum / (ticks - settling) / 20 - 1) < 0.05);
}

void TestSteadyPower::followsAChangeOfTheLoad()
{
    SteadyWatts part;
    double watts = 0;
    for (int second = 0; second < 20; ++second) { // 4 W, published every second tick.
        watts = part.add(second % 2 ? 8 : 0, 1, working).value_or(0);
    }
    QCOMPARE(watts, 4.0);
    for (int second = 0; second < 6; ++second)
        watts = part.add(second % 2 ? 60 : 0, 1, working).value();
    QCOMPARE(watts, 30.0);
}

void TestSteadyPower::holdsForFiveSecondsAndThenDenies()
{
    SteadyWatts part;
    part.add(10, 1, working);
    part.add(12, 1, working);
    for (int second = 1; second <= 5; ++second)
        QCOMPARE(part.add(0, 1, working).value(), 12.0);
    for (int second = 6; second <= 60; ++second)
        QVERIFY(!part.add(0, 1, working));
}

void TestSteadyPower::goesOnWhenACounterMovesAgain()
{
    SteadyWatts part;
    part.add(10, 1, working);
    part.add(10, 1, working);
    for (int second = 0; second < 9; ++second)
        part.add(0, 1, working);
    QCOMPARE(part.add(50, 1, working).value(), 5.0); // Over the ten seconds that it stood still.
    QCOMPARE(part.add(7, 1, working).value(), 7.0 / 1);
}

void TestSteadyPower::deniesWhatNeverMoved()
{
    for (const auto standstill : {working, idle}) {
        SteadyWatts part;
        for (int second = 0; second < 10; ++second)
            QVERIFY(!part.add(0, 1, standstill));
    }
}

void TestSteadyPower::doesNotHoldTheFirstBatch()
{
    // What the first batch holds began before the first tick: 42 J are of more than one second.
    SteadyWatts atOnce;
    QCOMPARE(atOnce.add(42, 1, working).value(),
             42.0); // Nothing tells it from a steady counter yet.
    QVERIFY(!atOnce.add(0, 1, working));
    QCOMPARE(atOnce.add(42, 1, working).value(), 21.0);

    SteadyWatts later;
    QVERIFY(!later.add(0, 1, working));
    QVERIFY(!later.add(42, 1, working));
    QVERIFY(!later.add(0, 1, working));
    QCOMPARE(later.add(42, 1, working).value(), 21.0);
}

void TestSteadyPower::showsAnIdlePartAsZero_data()
{
    QTest::addColumn<int>("standstill");
    QTest::newRow("its load is 0") << static_cast<int>(idle);
    QTest::newRow("a counter published with it moved") << static_cast<int>(published);
}

void TestSteadyPower::showsAnIdlePartAsZero()
{
    QFETCH(int, standstill);
    SteadyWatts part;
    part.add(3, 1, working);
    for (int second = 0; second < 20; ++second)
        QCOMPARE(part.add(0, 1, SteadyWatts::Standstill(standstill)).value(), 0.0);
    QCOMPARE(part.add(3, 1, working).value(), 3.0); // Of the last tick, not of the whole rest.
}

void TestSteadyPower::holdsAnIdlePartWhoseBatchIsPending()
{
    SteadyWatts part;
    for (int second = 0; second < 10; ++second)
        part.add(second % 2 ? 8 : 0, 1, working);
    for (int second = 0; second < 5; ++second)
        QCOMPARE(part.add(0, 1, idle).value(), 4.0);
    part.add(0, 1, idle);
    QCOMPARE(part.add(0, 1, idle).value(), 0.0);
}

void TestSteadyPower::readsANeuralEngineThatRests()
{
    SteadyPower power;
    for (int second = 0; second < 20; ++second) {
        const ChipReading reading = applied(power, tick(5, 1, 0));
        QCOMPARE(reading.aneWatts, 0.0);
        QVERIFY(!reading.denied.aneWatts);
    }
    QCOMPARE(applied(power, tick(5, 1, 2)).aneWatts, 2.0);
}

void TestSteadyPower::deniesTheNeuralEngineWithTheCPU()
{
    SteadyPower power;
    applied(power, tick(5, 1, 2));
    applied(power, tick(5, 1, 2));
    for (int second = 1; second <= 5; ++second) {
        const ChipReading held = applied(power, tick(0, 1, 0));
        QCOMPARE(held.cpuWatts, 5.0);
        QCOMPARE(held.aneWatts, 2.0);
        QVERIFY(!held.denied.anyWatts());
    }
    const ChipReading denied = applied(power, tick(0, 1, 0));
    QVERIFY(denied.denied.cpuWatts && denied.denied.aneWatts && !denied.denied.gpuWatts);
    QCOMPARE(denied.cpuWatts, 0.0);
    QCOMPARE(denied.gpuWatts, 1.0);
}

void TestSteadyPower::keepsAPartWhoseOwnCounterMoves()
{
    // All counters of millijoules read 0 on some systems; that of the GPU counts nanojoules.
    SteadyPower power;
    for (int second = 0; second < 10; ++second) {
        const ChipReading reading = applied(power, tick(0, 7, 0));
        QCOMPARE(reading.gpuWatts, 7.0);
        QVERIFY(reading.denied.cpuWatts && reading.denied.aneWatts && !reading.denied.gpuWatts);
    }
    QCOMPARE(applied(power, tick(0, 0, 0, 0)).gpuWatts, 0.0); // It rests.
    QVERIFY(!applied(power, tick(0, 0, 0, 0)).denied.gpuWatts);
}

void TestSteadyPower::countsTicksOfAnyLength()
{
    SteadyPower power;
    QCOMPARE(applied(power, tick(5, 1, 2), 0).cpuWatts, 5.0);
    QCOMPARE(applied(power, tick(6, 1, 2), 3600).cpuWatts, 6.0);
    QCOMPARE(applied(power, tick(7, 1, 2), 0.5).cpuWatts, 7.0);
}

QTEST_APPLESS_MAIN(TestSteadyPower)
#include "tst_SteadyPower.moc"
