#include "timeline/MeanSeries.h"

#include <QTest>

using namespace corvane;

namespace {

MeanRecord record(double start, float mean = 1)
{
    MeanRecord record{.start = start, .seconds = 10};
    record.means[0] = {mean, mean, mean, 1};
    return record;
}

QList<double> starts(const MeanSeries &series)
{
    QList<double> starts;
    for (const MeanRecord &record : series.records())
        starts.append(record.start);
    return starts;
}

} // namespace

class TestMeanSeries : public QObject {
    Q_OBJECT

private slots:
    void keepsTheOrderOfTime();
    void mergesWhatBeganAtTheSameTime();
    void mergesWhatBeganWithinALongerSpan();
    void dropsWhatIsOld();
    void dropsTheOldestOfTooMany();
    void keepsWhatAClockThatWasSetBackHasLeft_data();
    void keepsWhatAClockThatWasSetBackHasLeft();
    void takesItsMemoryOnce();
};

void TestMeanSeries::keepsTheOrderOfTime()
{
    MeanSeries series(1000, 10);
    for (const double start : {30.0, 10.0, 20.0})
        series.insert(record(start), 30);
    QCOMPARE(starts(series), (QList<double>{10, 20, 30}));
}

void TestMeanSeries::mergesWhatBeganAtTheSameTime()
{
    MeanSeries series(1000, 10);
    series.insert(record(10, 2), 10);
    series.insert(record(10, 4), 10);
    QCOMPARE(starts(series), QList<double>{10});
    QCOMPARE(series.records().front().means[0], (Mean{3, 2, 4, 2}));
}

/// Minutes stand for the short spans before a start; the clock may be set back into one.
void TestMeanSeries::mergesWhatBeganWithinALongerSpan()
{
    MeanSeries series(1000, 10);
    MeanRecord minute = record(0, 2);
    minute.seconds = 60;
    series.insert(minute, 60);
    series.insert(record(60), 60);
    series.insert(record(50, 4), 50);
    QCOMPARE(starts(series), (QList<double>{0, 60}));
    QCOMPARE(series.records().front().means[0], (Mean{3, 2, 4, 2}));
    QCOMPARE(series.records().front().end(), 60.0);
}

void TestMeanSeries::dropsWhatIsOld()
{
    MeanSeries series(100, 10);
    series.insert(record(10), 10);
    series.insert(record(110), 110);
    QCOMPARE(starts(series), (QList<double>{10, 110}));
    series.insert(record(120), 120);
    QCOMPARE(starts(series), (QList<double>{110, 120}));
}

void TestMeanSeries::dropsTheOldestOfTooMany()
{
    MeanSeries series(1000, 3);
    for (int i = 0; i < 5; ++i)
        series.insert(record(i * 10), i * 10);
    QCOMPARE(starts(series), (QList<double>{20, 30, 40}));
}

void TestMeanSeries::keepsWhatAClockThatWasSetBackHasLeft_data()
{
    QTest::addColumn<double>("wrong");
    QTest::addColumn<bool>("isKept");
    QTest::newRow("an hour ahead") << 4'600.0 << true;
    QTest::newRow("years ahead") << 1e8 << false;
}

void TestMeanSeries::keepsWhatAClockThatWasSetBackHasLeft()
{
    QFETCH(double, wrong);
    QFETCH(bool, isKept);
    MeanSeries series(10'000, 10);
    series.insert(record(wrong), wrong);
    series.insert(record(1'000), 1'000);
    QCOMPARE(starts(series), isKept ? (QList<double>{1'000, wrong}) : QList<double>{1'000});
}

void TestMeanSeries::takesItsMemoryOnce()
{
    MeanSeries series(1e6, 100);
    const MeanRecord *place = nullptr;
    for (int i = 0; i < 1'000; ++i) {
        series.insert(record(i * 10), i * 10);
        place = place ? place : series.records().data();
        QCOMPARE(series.records().data(), place);
    }
    QCOMPARE(series.records().size(), std::size_t(100));
}

QTEST_APPLESS_MAIN(TestMeanSeries)
#include "tst_MeanSeries.moc"
