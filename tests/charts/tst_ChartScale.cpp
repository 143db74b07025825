#include "charts/ChartScale.h"

#include <QTest>

#include <cmath>
#include <limits>

using namespace corvane;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

using Point = std::optional<QPointF>;
using Index = std::optional<std::size_t>;

} // namespace

Q_DECLARE_METATYPE(Point)
Q_DECLARE_METATYPE(Index)
Q_DECLARE_METATYPE(std::vector<double>)
Q_DECLARE_METATYPE(corvane::ChartRange)

class TestChartScale : public QObject {
    Q_OBJECT

private slots:
    void mapsSamples_data();
    void mapsSamples();
    void refusesUnusableRanges_data();
    void refusesUnusableRanges();
    void skipsSamplesBeforeAClockJump_data();
    void skipsSamplesBeforeAClockJump();
    void findsTheNearestSample_data();
    void findsTheNearestSample();
    void placesThePill();
};

void TestChartScale::mapsSamples_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<double>("amount");
    QTest::addColumn<Point>("expected");
    // 100 to 160 seconds and 0 to 10 on a chart of 300 x 50.
    QTest::newRow("the lower bounds are the bottom left") << 100.0 << 0.0 << Point({0, 50});
    QTest::newRow("the upper bounds are the top right") << 160.0 << 10.0 << Point({300, 0});
    QTest::newRow("the middle") << 130.0 << 5.0 << Point({150, 25});
    QTest::newRow("a millisecond after the end") << 160.001 << 5.0 << Point();
    QTest::newRow("a millisecond before the start") << 99.999 << 5.0 << Point();
    QTest::newRow("above the values is pinned") << 130.0 << 12.0 << Point({150, 0});
    QTest::newRow("below the values is pinned") << 130.0 << -3.0 << Point({150, 50});
    QTest::newRow("an infinite value is pinned") << 130.0 << infinity << Point({150, 0});
    QTest::newRow("a minus infinite value is pinned") << 130.0 << -infinity << Point({150, 50});
    QTest::newRow("not a number maps to the top") << 130.0 << notANumber << Point({150, 0});
    QTest::newRow("a time that is not a number has no point") << notANumber << 5.0 << Point();
    QTest::newRow("an infinite time has no point") << infinity << 5.0 << Point();
}

void TestChartScale::mapsSamples()
{
    QFETCH(double, seconds);
    QFETCH(double, amount);
    const ChartScale scale{{100, 160}, {0, 10}, {300, 50}};
    const std::optional<double> x = scale.xFor(seconds);
    QTEST(x ? Point({*x, scale.yFor(amount)}) : Point(), "expected");
}

void TestChartScale::refusesUnusableRanges_data()
{
    QTest::addColumn<ChartRange>("time");
    QTest::addColumn<ChartRange>("value");
    QTest::addColumn<bool>("expected");
    QTest::newRow("both in order") << ChartRange{0, 1} << ChartRange{0, 1} << true;
    QTest::newRow("a single instant") << ChartRange{5, 5} << ChartRange{0, 1} << false;
    QTest::newRow("time backwards") << ChartRange{5, 4} << ChartRange{0, 1} << false;
    QTest::newRow("no range of values") << ChartRange{0, 1} << ChartRange{3, 3} << false;
    QTest::newRow("values backwards") << ChartRange{0, 1} << ChartRange{3, 2} << false;
    QTest::newRow("not a number") << ChartRange{0, notANumber} << ChartRange{0, 1} << false;
    QTest::newRow("infinite") << ChartRange{0, 1} << ChartRange{0, infinity} << false;
}

void TestChartScale::refusesUnusableRanges()
{
    QFETCH(ChartRange, time);
    QFETCH(ChartRange, value);
    const ChartScale scale{time, value, {100, 100}};
    QTEST(scale.isUsable(), "expected");
}

void TestChartScale::skipsSamplesBeforeAClockJump_data()
{
    QTest::addColumn<std::vector<double>>("timestamps");
    QTest::addColumn<QList<double>>("expected"); // -1: no point.
    QTest::newRow("ascending") << std::vector<double>{0, 5, 10} << QList<double>{0, 50, 100};
    QTest::newRow("equal ones stay") << std::vector<double>{0, 5, 5} << QList<double>{0, 50, 50};
    QTest::newRow("a jump back hides the samples that it passed")
        << std::vector<double>{0, 4, 8, 2, 6} << QList<double>{0, -1, -1, 20, 60};
    QTest::newRow("descending leaves the last")
        << std::vector<double>{9, 6, 3} << QList<double>{-1, -1, 30};
    QTest::newRow("not a number hides only itself")
        << std::vector<double>{0, notANumber, 4} << QList<double>{0, -1, 40};
    QTest::newRow("outside on both sides")
        << std::vector<double>{-1, 5, 11} << QList<double>{-1, 50, -1};
}

void TestChartScale::skipsSamplesBeforeAClockJump()
{
    QFETCH(std::vector<double>, timestamps);
    QList<double> columns;
    for (const auto column : sampleColumns(timestamps, {{0, 10}, {0, 1}, {100, 10}}))
        columns.append(column.value_or(-1));
    QTEST(columns, "expected");
}

void TestChartScale::findsTheNearestSample_data()
{
    QTest::addColumn<std::vector<double>>("timestamps");
    QTest::addColumn<ChartRange>("time");
    QTest::addColumn<double>("x");
    QTest::addColumn<double>("width");
    QTest::addColumn<Index>("expected");
    const std::vector<double> row{0, 10, 20, 30};
    const ChartRange range{0, 30};
    QTest::newRow("on a sample") << row << range << 100.0 << 300.0 << Index(1);
    QTest::newRow("halfway is the earlier") << row << range << 150.0 << 300.0 << Index(1);
    QTest::newRow("just past halfway") << row << range << 150.1 << 300.0 << Index(2);
    QTest::newRow("left of the chart") << row << range << -20.0 << 300.0 << Index(0);
    QTest::newRow("right of the chart") << row << range << 500.0 << 300.0 << Index(3);
    QTest::newRow("a sample outside the range counts")
        << std::vector<double>{-5, 200} << range << 10.0 << 300.0 << Index(0);
    QTest::newRow("equal timestamps give the earlier")
        << std::vector<double>{0, 10, 10, 10, 20} << ChartRange{0, 20} << 51.0 << 100.0 << Index(1);
    QTest::newRow("one sample") << std::vector<double>{500} << range << 1.0 << 300.0 << Index(0);
    QTest::newRow("no width") << row << range << 1.0 << 0.0 << Index();
    QTest::newRow("negative width") << row << range << 1.0 << -5.0 << Index();
    QTest::newRow("no samples") << std::vector<double>{} << range << 1.0 << 300.0 << Index();
    QTest::newRow("no time") << row << ChartRange{5, 5} << 1.0 << 300.0 << Index();
    QTest::newRow("time backwards") << row << ChartRange{5, 0} << 1.0 << 300.0 << Index();
    QTest::newRow("a sample before a clock jump is left out")
        << std::vector<double>{0, 10, 20, 11, 30} << range << 190.0 << 300.0 << Index(3);
    QTest::newRow("not a number is left out")
        << std::vector<double>{notANumber, 10} << range << 0.0 << 300.0 << Index(1);
    QTest::newRow("no cursor at all") << row << range << notANumber << 300.0 << Index(0);
}

void TestChartScale::findsTheNearestSample()
{
    QFETCH(std::vector<double>, timestamps);
    QFETCH(ChartRange, time);
    QFETCH(double, x);
    QFETCH(double, width);
    QTEST(nearestIndex(timestamps, time, x, width), "expected");
}

void TestChartScale::placesThePill()
{
    QCOMPARE(clampedPillX(10, 50, 300), 54.0);
    QCOMPARE(clampedPillX(150, 50, 300), 150.0);
    QCOMPARE(clampedPillX(299, 50, 300), 246.0);
    QCOMPARE(clampedPillX(10, 50, 90), 36.0); // Narrower than the pill: the right limit wins.
    QCOMPARE(clampedPillX(10, 0, 300), 10.0);
    QCOMPARE(pillY(40), 22.0);
    QCOMPARE(pillY(0), 4.0);
    QCOMPARE(pillY(4), 4.0);
}

QTEST_APPLESS_MAIN(TestChartScale)
#include "tst_ChartScale.moc"
