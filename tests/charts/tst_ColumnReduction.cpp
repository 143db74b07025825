#include "charts/ColumnReduction.h"

#include <QTest>

using namespace corvane;

namespace {

using Values = std::vector<std::optional<double>>;

SparklineData chart(const Values &values)
{
    SparklineData chart{.series = {{.values = values}}, .xDomain = {0, 8}};
    for (std::size_t i = 0; i < values.size(); ++i) {
        chart.timestamps.push_back(double(i) + 0.5);
        chart.band.push_back(values[i] ? std::optional(ChartRange{*values[i] - 1, *values[i] + 2})
                                       : std::nullopt);
    }
    return chart;
}

} // namespace

class TestColumnReduction : public QObject {
    Q_OBJECT

private slots:
    void hasOnePointAColumn_data();
    void hasOnePointAColumn();
    void theBandHoldsAllRanges();
    void stackedSeriesStayOnEachOther();
    void aShortSeriesIsReducedAsFarAsItGoes();
};

void TestColumnReduction::hasOnePointAColumn_data()
{
    const std::optional<double> none;
    QTest::addColumn<Values>("values");
    QTest::addColumn<int>("columns");
    QTest::addColumn<Values>("reduced");
    QTest::newRow("as many points as columns") << Values{1, 2, 3} << 3 << Values{1, 2, 3};
    QTest::newRow("two points a column")
        << Values{1, 3, 5, 7, 2, 4, 6, 8} << 4 << Values{2, 6, 3, 7};
    QTest::newRow("all in one column") << Values{1, 2, 6} << 1 << Values{3};
    QTest::newRow("a gap stays") << Values{1, 3, none, 7, 2, 4, 6, 8} << 4
                                 << Values{2, none, 7, 3, 7};
    QTest::newRow("no column") << Values{1, 2} << 0 << Values{1, 2};
    QTest::newRow("no points") << Values{} << 4 << Values{};
}

void TestColumnReduction::hasOnePointAColumn()
{
    QFETCH(Values, values);
    QFETCH(int, columns);
    QFETCH(Values, reduced);
    const SparklineData data = reducedToColumns(chart(values), columns);
    QCOMPARE(data.series.front().values, reduced);
    QCOMPARE(data.timestamps.size(), reduced.size());
    QCOMPARE(data.band.size(), reduced.size());
    QVERIFY(std::ranges::is_sorted(data.timestamps));
}

void TestColumnReduction::theBandHoldsAllRanges()
{
    const SparklineData data = reducedToColumns(chart({1, 3, 9, 5}), 2);
    QCOMPARE(data.band.front(), std::optional(ChartRange{0, 11}));
}

void TestColumnReduction::stackedSeriesStayOnEachOther()
{
    SparklineData stacked = chart({1, 3, 5, 7, 2, 4, 6, 8});
    stacked.series.push_back({.values = {10, 20, 30, 40, 50, 60, 70, 80}});
    stacked.series.push_back({.values = {11, 23, 35, 47, 52, 64, 76, 88}}); // The sum.
    const SparklineData data = reducedToColumns(stacked, 3);
    for (std::size_t i = 0; i < data.timestamps.size(); ++i)
        QCOMPARE(*data.series[0].values[i] + *data.series[1].values[i], *data.series[2].values[i]);
}

void TestColumnReduction::aShortSeriesIsReducedAsFarAsItGoes()
{
    SparklineData data = chart({1, 3, 5, 7});
    data.xDomain = {0, 4};
    data.series.push_back({.values = {4}});
    QCOMPARE(reducedToColumns(data, 2).series[1].values, (Values{4, std::nullopt}));
}

QTEST_APPLESS_MAIN(TestColumnReduction)
#include "tst_ColumnReduction.moc"
