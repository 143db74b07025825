#include "timeline/Timeline.h"

#include <QTest>

using namespace corvane;

namespace {

SystemMetrics sample(double time, double watts)
{
    return {.timestamp = time,
            .memory = {.total = 100, .used = 50},
            .chip = ChipReading{.cpuWatts = watts}};
}

/// Feeds a sample each second; the steady clock follows the wall clock.
std::vector<MinuteRecord> feed(Timeline &timeline, double from, double to, double watts = 2)
{
    std::vector<MinuteRecord> ended;
    for (double time = from; time < to; ++time) {
        if (const auto minute = timeline.add(sample(time, watts), time))
            ended.push_back(*minute);
    }
    return ended;
}

QList<double> ends(const MeanWindow &window)
{
    QList<double> ends;
    for (const MeanRecord &record : window.records)
        ends.append(record.end());
    return ends;
}

} // namespace

class TestTimeline : public QObject {
    Q_OBJECT

private slots:
    void aMinuteEndsWithTheFirstSampleAfterIt();
    void aWindowEndsWithTheLastWholeSpan();
    void aSleepIsAGap();
    void joulesFollowTheSteadyClock();
    void aMinuteThatComesTwiceIsMerged();
    void continuesWhatTheDiskHasKept();
    void anUnsavedMinuteEndsOnce_data();
    void anUnsavedMinuteEndsOnce();
    void minutesStandForTheShortSpansBeforeTheStart();
    void theMemoryStaysBelowHalfAMegabyte();
};

void TestTimeline::aMinuteEndsWithTheFirstSampleAfterIt()
{
    Timeline timeline;
    QVERIFY(feed(timeline, 600, 660).empty());
    const auto minute = timeline.add(sample(660, 2), 660);
    QVERIFY(minute);
    QCOMPARE(minute->means.start, 600.0);
    QCOMPARE(minute->means[Measure::cpuWatts], (Mean{2, 2, 2, 60}));
    QCOMPARE(minute->energy.seconds, 59.0); // Nothing is known of the time before the first.
    QCOMPARE(minute->energy.all, 118.0);
}

void TestTimeline::aWindowEndsWithTheLastWholeSpan()
{
    Timeline timeline;
    feed(timeline, 0, 700);
    const MeanWindow tenMinutes = timeline.window(600, 699);
    QCOMPARE(tenMinutes.begin, 90.0);
    QCOMPARE(tenMinutes.end, 690.0);
    QCOMPARE(tenMinutes.records.size(), std::size_t(61)); // One ends at the left edge.
    QCOMPARE(ends(tenMinutes).front(), 90.0);
    QCOMPARE(ends(tenMinutes).back(), 690.0);
    const MeanWindow day = timeline.window(86'400, 699);
    QCOMPARE(day.end, 660.0);
    QCOMPARE(ends(day).size(), 11);
}

void TestTimeline::aSleepIsAGap()
{
    Timeline timeline;
    feed(timeline, 0, 20);
    feed(timeline, 100, 121);
    QCOMPARE(ends(timeline.window(600, 120)), (QList<double>{10, 20, 110, 120}));
    QCOMPARE(timeline.energy(120).sinceStart.seconds, 39.0); // 19 and 20.
}

/// The wall clock is set while the program runs.
void TestTimeline::joulesFollowTheSteadyClock()
{
    Timeline timeline;
    double wall = 1'000;
    for (int second = 0; second <= 10; ++second, wall += second == 5 ? 3'600 : 1)
        timeline.add(sample(wall, 3), second);
    QCOMPARE(timeline.energy(wall).sinceStart.all, 30.0);
}

void TestTimeline::aMinuteThatComesTwiceIsMerged()
{
    Timeline timeline;
    feed(timeline, 0, 121, 2);
    feed(timeline, 60, 121, 4); // The clock was set back by a minute.
    const MeanWindow day = timeline.window(86'400, 120);
    QCOMPARE(ends(day), (QList<double>{60, 120}));
    QCOMPARE(day.records[1][Measure::cpuWatts], (Mean{3, 2, 4, 120}));
}

void TestTimeline::continuesWhatTheDiskHasKept()
{
    Timeline before;
    LoadedMinutes loaded;
    for (const MinuteRecord &minute : feed(before, 0, 6'001)) {
        loaded.means.push_back(minute.means);
        if (loaded.energy.empty() || loaded.energy.back().start + 900 <= minute.means.start)
            loaded.energy.push_back({.start = spanStart(minute.means.start, 900)});
        loaded.energy.back().energy += minute.energy;
    }
    Timeline timeline;
    feed(timeline, 6'010, 6'020);
    QVERIFY(timeline.add(loaded, {}).empty());
    const EnergyReport report = timeline.energy(6'020);
    QCOMPARE(report.sinceStart.seconds, 9.0);
    QCOMPARE(report.today().seconds, 5'999.0 + 9.0);
    QCOMPARE(timeline.window(86'400, 6'020).records.size(), std::size_t(100));
}

void TestTimeline::anUnsavedMinuteEndsOnce_data()
{
    QTest::addColumn<double>("start");
    QTest::addColumn<double>("delivery");
    QTest::newRow("started again in the same minute") << 630.0 << 631.0;
    QTest::newRow("started again in the same ten seconds") << 625.0 << 626.0;
    QTest::newRow("started again a minute later") << 680.0 << 681.0;
    QTest::newRow("started again a day later") << 87'000.0 << 87'001.0;
    QTest::newRow("the disk answers after the minute") << 630.0 << 670.0;
}

void TestTimeline::anUnsavedMinuteEndsOnce()
{
    QFETCH(double, start);
    QFETCH(double, delivery);
    LoadedMinutes loaded;
    for (double time = 600; time < 620; ++time)
        loaded.unsaved.push_back({sample(time, 2), 1});

    Timeline timeline;
    std::vector<MinuteRecord> ended = feed(timeline, start, delivery);
    for (const MinuteRecord &minute : timeline.add(loaded, {}))
        ended.push_back(minute);
    for (const MinuteRecord &minute : feed(timeline, delivery, start + 120))
        ended.push_back(minute);

    // Lines of one minute are merged where they are read.
    MeanRecord first{.start = 600, .seconds = 60};
    Energy energy;
    for (const MinuteRecord &minute : ended) {
        if (minute.means.start != 600)
            continue;
        first = merged(first, minute.means);
        energy += minute.energy;
    }
    const double later = std::max(660 - start, 0.0);
    QCOMPARE(first[Measure::cpuWatts].known, std::uint16_t(20 + later));
    QCOMPARE(energy.all, 2 * (20 + std::max(later - 1, 0.0)));
}

void TestTimeline::minutesStandForTheShortSpansBeforeTheStart()
{
    LoadedMinutes loaded;
    for (double start = 0; start < 3'600; start += 60)
        loaded.means.push_back({.start = start, .seconds = 60});
    Timeline timeline;
    feed(timeline, 3'590, 3'621);
    timeline.add(loaded, {});
    const QList<double> tenMinutes = ends(timeline.window(600, 3'620));
    QCOMPARE(tenMinutes.mid(0, 2), (QList<double>{3'060, 3'120}));
    QCOMPARE(tenMinutes.mid(8), (QList<double>{3'540, 3'600, 3'610, 3'620}));
    QCOMPARE(timeline.window(3'600, 3'620).records.size(), std::size_t(61)); // 59 and 2.
}

void TestTimeline::theMemoryStaysBelowHalfAMegabyte()
{
    constexpr std::size_t records = 363 + 1'443;
    constexpr std::size_t quarters = 9 * 96 + 1;
    QVERIFY(sizeof(Timeline) + records * sizeof(MeanRecord)
                + quarters * sizeof(EnergyLedger::Quarter)
            < 500'000);
}

QTEST_APPLESS_MAIN(TestTimeline)
#include "tst_Timeline.moc"
