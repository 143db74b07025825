#include "cards/MeansChart.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

using Values = std::vector<std::optional<double>>;

MeanRecord record(double start, std::optional<float> load)
{
    MeanRecord record{.start = start, .seconds = 10};
    if (load)
        record.means[indexOf(Measure::cpuLoad)] = {*load, *load - 5, *load + 10, 10};
    return record;
}

} // namespace

class TestMeansChart : public QObject {
    Q_OBJECT

private slots:
    void aPointStandsAtTheEndOfItsSpan();
    void aPauseIsAGap();
    void whatWasNotKnownIsAGap();
    void convertsMeansAndRanges();
    void anEmptyWindowHasItsTimes();
    void thePillTellsTimeMeanAndRange();
    void thePillOfADayTellsTheWeekday();
};

void TestMeansChart::aPointStandsAtTheEndOfItsSpan()
{
    const std::vector<MeanRecord> records{record(0, 20), record(10, 30)};
    const SparklineData chart =
        MeansChart({-580, 20, records}).loadChart(Measure::cpuLoad, Qt::red);
    QCOMPARE(chart.timestamps, (std::vector<double>{10, 20}));
    QCOMPARE(chart.series.front().values, (Values{20, 30}));
    QCOMPARE(chart.band[1], std::optional(ChartRange{25, 40}));
    QVERIFY(chart.showsMeans);
}

void TestMeansChart::aPauseIsAGap()
{
    const std::vector<MeanRecord> records{record(0, 20), record(50, 30)};
    const MeansChart means({-540, 60, records});
    QCOMPARE(means.chart().timestamps, (std::vector<double>{10, 50, 60}));
    QCOMPARE(means.means(Measure::cpuLoad), (Values{20, {}, 30}));
    QCOMPARE(means.ranges(Measure::cpuLoad)[1], std::optional<ChartRange>());
}

void TestMeansChart::whatWasNotKnownIsAGap()
{
    const std::vector<MeanRecord> records{record(0, 20), record(10, {}), record(20, 30)};
    const MeansChart means({-570, 30, records});
    QCOMPARE(means.chart().timestamps.size(), std::size_t(3));
    QCOMPARE(means.means(Measure::cpuLoad), (Values{20, {}, 30}));
}

void TestMeansChart::convertsMeansAndRanges()
{
    const std::vector<MeanRecord> records{record(0, 20)};
    const MeansChart means({-590, 10, records});
    const auto half = [](double value) { return value / 2; };
    QCOMPARE(means.means(Measure::cpuLoad, half), Values{10});
    QCOMPARE(means.ranges(Measure::cpuLoad, half)[0], std::optional(ChartRange{7.5, 15}));
}

void TestMeansChart::anEmptyWindowHasItsTimes()
{
    const SparklineData chart = MeansChart({0, 600, {}}).loadChart(Measure::cpuLoad, Qt::red);
    QVERIFY(chart.timestamps.empty());
    QCOMPARE(chart.xDomain, (ChartRange{0, 600}));
}

void TestMeansChart::thePillTellsTimeMeanAndRange()
{
    const std::vector<MeanRecord> records{record(0, 20), record(50, 30)};
    const SparklineData chart =
        MeansChart({-540, 60, records}).loadChart(Measure::cpuLoad, Qt::red);
    const QString text = accessibleText(loadPill(chart, 0, Qt::red));
    QVERIFY2(text.endsWith(u":10, 20%, range 15–30%"_s), qPrintable(text));
    QVERIFY(accessibleText(loadPill(chart, 1, Qt::red)).endsWith(u", –, range –"_s));
}

void TestMeansChart::thePillOfADayTellsTheWeekday()
{
    const std::vector<MeanRecord> records{record(0, 20)};
    const SparklineData chart =
        MeansChart({-86'340, 60, records}).loadChart(Measure::cpuLoad, Qt::red);
    QVERIFY(QStringList({u"Sun"_s, u"Mon"_s}).contains(meanTime(chart, 0).left(3)));
}

QTEST_APPLESS_MAIN(TestMeansChart)
#include "tst_MeansChart.moc"
