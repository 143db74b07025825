#include "records/SeriesReduction.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestSeriesReduction : public QObject {
    Q_OBJECT

private slots:
    void downsamples_data();
    void downsamples();
    void longListsKeepFirstAndNewest_data();
    void longListsKeepFirstAndNewest();
    void chosenSamplesAreTheSameRecords();
    void namesTheDominantState_data();
    void namesTheDominantState();
    void samplesWithoutChipDoNotCount();
};

namespace {

/// Samples whose time stamps are their places.
std::vector<SystemMetrics> numbered(int count)
{
    std::vector<SystemMetrics> samples;
    for (int i = 0; i < count; ++i)
        samples.push_back({.timestamp = double(i)});
    return samples;
}

QList<int> numbers(const std::vector<SystemMetrics> &samples)
{
    QList<int> places;
    for (const SystemMetrics &sample : samples)
        places.append(int(sample.timestamp));
    return places;
}

/// Samples that name these states; a null text is no state at all, an empty one no active state.
std::vector<SystemMetrics> withStates(const QStringList &states)
{
    std::vector<SystemMetrics> samples;
    for (const QString &state : states) {
        ChipReading chip;
        if (!state.isNull())
            chip.gpuDominantState = state;
        samples.push_back({.chip = chip});
    }
    return samples;
}

} // namespace

void TestSeriesReduction::downsamples_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("maxPoints");
    QTest::addColumn<QList<int>>("expected");
    QTest::newRow("an empty list") << 0 << 5 << QList<int>{};
    QTest::newRow("an empty list and no points") << 0 << 0 << QList<int>{};
    QTest::newRow("fewer samples than points") << 3 << 5 << QList<int>{0, 1, 2};
    QTest::newRow("as many samples as points") << 5 << 5 << QList<int>{0, 1, 2, 3, 4};
    QTest::newRow("steps truncate toward zero") << 10 << 4 << QList<int>{0, 3, 6, 9};
    QTest::newRow("uneven steps") << 11 << 4 << QList<int>{0, 3, 6, 10};
    QTest::newRow("one sample too many") << 6 << 5 << QList<int>{0, 1, 2, 3, 5};
    QTest::newRow("two points are first and newest") << 5 << 2 << QList<int>{0, 4};
    QTest::newRow("one point is the newest") << 5 << 1 << QList<int>{4};
    QTest::newRow("one sample, one point") << 1 << 1 << QList<int>{0};
}

void TestSeriesReduction::downsamples()
{
    QFETCH(int, count);
    QFETCH(int, maxPoints);
    QTEST(numbers(chartDownsampled(numbered(count), maxPoints)), "expected");
}

void TestSeriesReduction::longListsKeepFirstAndNewest_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<int>("maxPoints");
    QTest::newRow("a full minute") << 60 << 60;
    QTest::newRow("one more than a minute") << 61 << 60;
    QTest::newRow("five minutes to the chart's points") << 300 << 180;
    QTest::newRow("a whole day") << 86'400 << 180;
}

void TestSeriesReduction::longListsKeepFirstAndNewest()
{
    QFETCH(int, count);
    QFETCH(int, maxPoints);
    const QList<int> chosen = numbers(chartDownsampled(numbered(count), maxPoints));
    QCOMPARE(chosen.size(), maxPoints);
    QCOMPARE(chosen.first(), 0);
    QCOMPARE(chosen.last(), count - 1);
    for (int i = 1; i < chosen.size(); ++i)
        QVERIFY(chosen[i - 1] < chosen[i]);
}

void TestSeriesReduction::chosenSamplesAreTheSameRecords()
{
    const std::vector<SystemMetrics> samples = numbered(10);
    const std::vector<SystemMetrics> chosen = chartDownsampled(samples, 4);
    QCOMPARE(chosen[1].id, samples[3].id);
    QCOMPARE(chartDownsampled(samples, 10)[7].id, samples[7].id);
}

void TestSeriesReduction::namesTheDominantState_data()
{
    using State = std::optional<QString>;
    QTest::addColumn<QStringList>("states");
    QTest::addColumn<int>("tail");
    QTest::addColumn<State>("expected");
    QTest::newRow("an empty list") << QStringList() << 5 << State();
    QTest::newRow("the most frequent")
        << QStringList{u"P1"_s, QString(), u"P3"_s, u"P3"_s, u""_s} << 5 << State(u"P3"_s);
    QTest::newRow("one sample") << QStringList{u"P2"_s} << 5 << State(u"P2"_s);
    QTest::newRow("only the newest count")
        << QStringList{u"P1"_s, u"P1"_s, u"P1"_s, u"P2"_s, u"P2"_s} << 2 << State(u"P2"_s);
    QTest::newRow("a tail of none") << QStringList{u"P1"_s, u"P1"_s} << 0 << State();
    QTest::newRow("a tail longer than the list")
        << QStringList{u"P1"_s, u"P1"_s, u"P2"_s} << 1000 << State(u"P1"_s);
    QTest::newRow("no state was active") << QStringList{u""_s, u""_s} << 5 << State();
    QTest::newRow("no state at all") << QStringList{QString(), QString()} << 5 << State();
    QTest::newRow("of equals the one seen first")
        << QStringList{u"P9"_s, u"P1"_s, u"P1"_s, u"P9"_s} << 5 << State(u"P9"_s);
    QTest::newRow("names differ by case")
        << QStringList{u"p1"_s, u"P1"_s, u"P1"_s} << 5 << State(u"P1"_s);
}

void TestSeriesReduction::namesTheDominantState()
{
    QFETCH(QStringList, states);
    QFETCH(int, tail);
    QTEST(dominantGPUState(withStates(states), tail), "expected");
}

void TestSeriesReduction::samplesWithoutChipDoNotCount()
{
    std::vector<SystemMetrics> samples = numbered(5);
    QVERIFY(!dominantGPUState(samples, 5));
    samples[1].chip = ChipReading{.gpuDominantState = u"P4"_s};
    QCOMPARE(dominantGPUState(samples, 5), std::optional<QString>(u"P4"_s));
    QVERIFY(!dominantGPUState(samples, 3)); // Those three have none.
}

QTEST_APPLESS_MAIN(TestSeriesReduction)
#include "tst_SeriesReduction.moc"
