#include "timeline/MeanRecord.h"

#include <QTest>

#include <limits>

using namespace corvane;

namespace {

Measures measures(std::optional<double> memory, std::optional<double> watts)
{
    Measures measures;
    measures[indexOf(Measure::memory)] = memory;
    measures[indexOf(Measure::cpuWatts)] = watts;
    return measures;
}

} // namespace

class TestMeanRecord : public QObject {
    Q_OBJECT

private slots:
    void meanLeastAndGreatestOfWhatWasKnown();
    void aSpanWithoutAValueHasNone();
    void collectsInParts();
    void mergesByTheNumberOfSamples();
    void countsDoNotWrap();
    void spansBeginAtMultiplesOfTheirLength_data();
    void spansBeginAtMultiplesOfTheirLength();
};

void TestMeanRecord::meanLeastAndGreatestOfWhatWasKnown()
{
    MeanBuilder builder;
    builder.add(measures(10, 4));
    builder.add(measures(20, {}));
    builder.add(measures(60, -2));
    const MeanRecord record = builder.record(120, 10);
    QCOMPARE(record.start, 120.0);
    QCOMPARE(record.end(), 130.0);
    QCOMPARE(record[Measure::memory], (Mean{30, 10, 60, 3}));
    QCOMPARE(record[Measure::cpuWatts], (Mean{1, -2, 4, 2}));
}

void TestMeanRecord::aSpanWithoutAValueHasNone()
{
    MeanBuilder builder;
    builder.add(measures(10, {}));
    QCOMPARE(builder.record(0, 10)[Measure::cpuWatts], Mean());
    builder.clear();
    QCOMPARE(builder.record(0, 10)[Measure::memory], Mean());
}

void TestMeanRecord::collectsInParts()
{
    MeanBuilder whole;
    MeanBuilder first;
    MeanBuilder second;
    for (int i = 0; i < 10; ++i) {
        const Measures some = measures(i * i, i % 3 == 0 ? std::optional<double>(i) : std::nullopt);
        whole.add(some);
        (i < 4 ? first : second).add(some);
    }
    second.add(first);
    QCOMPARE(second.record(0, 60), whole.record(0, 60));
}

void TestMeanRecord::mergesByTheNumberOfSamples()
{
    QCOMPARE(merged(Mean{10, 5, 15, 3}, Mean{30, 2, 40, 1}), (Mean{15, 2, 40, 4}));
    QCOMPARE(merged(Mean{10, 5, 15, 3}, Mean()), (Mean{10, 5, 15, 3}));
    QCOMPARE(merged(Mean(), Mean{10, 5, 15, 3}), (Mean{10, 5, 15, 3}));
    QCOMPARE(merged(Mean(), Mean()), Mean());
}

void TestMeanRecord::countsDoNotWrap()
{
    constexpr std::uint16_t most = std::numeric_limits<std::uint16_t>::max();
    QCOMPARE(merged(Mean{1, 1, 1, most}, Mean{1, 1, 1, 5}).known, most);
}

void TestMeanRecord::spansBeginAtMultiplesOfTheirLength_data()
{
    QTest::addColumn<double>("time");
    QTest::addColumn<double>("start");
    QTest::newRow("at the start") << 120.0 << 120.0;
    QTest::newRow("inside") << 179.99 << 120.0;
    QTest::newRow("before 2001") << -0.5 << -60.0;
}

void TestMeanRecord::spansBeginAtMultiplesOfTheirLength()
{
    QFETCH(double, time);
    QTEST(spanStart(time, 60), "start");
}

QTEST_APPLESS_MAIN(TestMeanRecord)
#include "tst_MeanRecord.moc"
