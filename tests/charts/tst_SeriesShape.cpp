#include "charts/SeriesShape.h"

#include <QTest>

#include <limits>

using namespace corvane;

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

SparklineSeries series(std::vector<std::optional<double>> values)
{
    return {.values = std::move(values)};
}

/// Samples at 0, 10 and 20 seconds, values 0 to 10, on a chart of 200 x 100.
SparklineData chart(std::vector<SparklineSeries> lines, Stacking stacking = Stacking::overlay)
{
    return {.timestamps = {0, 10, 20},
            .series = std::move(lines),
            .xDomain = {0, 20},
            .yDomain = {0, 10},
            .stacking = stacking};
}

const QSizeF size(200, 100);

} // namespace

class TestSeriesShape : public QObject {
    Q_OBJECT

private slots:
    void theBandHasAShapeForEachRun();
    void aLoneMeanIsADot();
    void hasLineAndFill();
    void stackedSeriesStandOnEachOther();
    void overlaidSeriesReachTheBottom();
    void clampsTheSumAndNotItsParts();
    void valuesAreMeasuredFromTheBottomOfTheDomain();
    void seriesMayBeShorterOrLonger();
    void anAbsentValueEndsAShape();
    void anAbsentValueCountsAsZeroInAStack();
    void oneSampleHasNoArea();
    void gapsAreStraight();
    void leavesOutSamplesWithoutAPlace();
    void hostileNumbersStayOnTheChart();
    void degenerateInputHasNoShapes_data();
    void degenerateInputHasNoShapes();
};

void TestSeriesShape::aLoneMeanIsADot()
{
    SparklineData chart{
        .timestamps = {2}, .series = {{.values = {5}}}, .xDomain = {0, 4}, .yDomain = {0, 10}};
    QCOMPARE(seriesShapes(chart, {40, 10}).front().line.size(), 1);
    chart.showsMeans = true;
    QCOMPARE(seriesShapes(chart, {40, 10}).front().line.boundingRect().width(), 1.0);
}

void TestSeriesShape::theBandHasAShapeForEachRun()
{
    SparklineData chart{.timestamps = {0, 1, 2, 3, 4}, .xDomain = {0, 4}, .yDomain = {0, 10}};
    const std::optional<ChartRange> range = ChartRange{2, 6};
    chart.band = {range, range, std::nullopt, range, std::nullopt};
    const std::vector<QPolygonF> shapes = bandShapes(chart, {40, 10});
    QCOMPARE(shapes.size(), std::size_t(2));
    QCOMPARE(shapes[0], QPolygonF({{0, 4}, {10, 4}, {10, 8}, {0, 8}}));
    QCOMPARE(shapes[1].boundingRect(), QRectF(29.5, 4, 1, 4)); // A single one is a dot wide.
    chart.yDomain = {};
    QVERIFY(bandShapes(chart, {40, 10}).empty());
}

void TestSeriesShape::hasLineAndFill()
{
    const std::vector<SeriesShape> shapes = seriesShapes(chart({series({2, 5, 10})}), size);
    QCOMPARE(shapes.size(), std::size_t(1));
    QCOMPARE(shapes[0].line, QPolygonF({QPointF(0, 80), QPointF(100, 50), QPointF(200, 0)}));
    QCOMPARE(shapes[0].fill,
             QPolygonF({QPointF(0, 100), QPointF(0, 80), QPointF(100, 50), QPointF(200, 0),
                        QPointF(200, 100), QPointF(100, 100), QPointF(0, 100)}));
}

void TestSeriesShape::stackedSeriesStandOnEachOther()
{
    const std::vector<SeriesShape> shapes = seriesShapes(
        chart({series({1, 1, 1}), series({2, 2, 2}), series({3, 3, 3})}, Stacking::stacked), size);
    QCOMPARE(shapes[0].line, QPolygonF({QPointF(0, 90), QPointF(100, 90), QPointF(200, 90)}));
    QCOMPARE(shapes[1].line, QPolygonF({QPointF(0, 70), QPointF(100, 70), QPointF(200, 70)}));
    QCOMPARE(shapes[2].line,
             QPolygonF({QPointF(0, 40), QPointF(100, 40), QPointF(200, 40)})); // At 6 of 10.
    QCOMPARE(shapes[2].fill,
             QPolygonF({QPointF(0, 70), QPointF(0, 40), QPointF(100, 40), QPointF(200, 40),
                        QPointF(200, 70), QPointF(100, 70), QPointF(0, 70)}));
}

void TestSeriesShape::overlaidSeriesReachTheBottom()
{
    const std::vector<SeriesShape> shapes =
        seriesShapes(chart({series({1, 1, 1}), series({2, 2, 2})}), size);
    QCOMPARE(shapes[1].line, QPolygonF({QPointF(0, 80), QPointF(100, 80), QPointF(200, 80)}));
    QCOMPARE(shapes[1].fill.first(), QPointF(0, 100));
}

void TestSeriesShape::clampsTheSumAndNotItsParts()
{
    const std::vector<SeriesShape> shapes =
        seriesShapes(chart({series({8, -4, 8}), series({6, 6, -20})}, Stacking::stacked), size);
    QCOMPARE(shapes[0].line, QPolygonF({QPointF(0, 20), QPointF(100, 100), QPointF(200, 20)}));
    QCOMPARE(shapes[1].line, QPolygonF({QPointF(0, 0), QPointF(100, 80), QPointF(200, 100)}));
}

void TestSeriesShape::valuesAreMeasuredFromTheBottomOfTheDomain()
{
    SparklineData data = chart({series({2, 4, 0})});
    data.yDomain = {10, 20};
    QCOMPARE(seriesShapes(data, size)[0].line,
             QPolygonF({QPointF(0, 80), QPointF(100, 60), QPointF(200, 100)}));
}

void TestSeriesShape::seriesMayBeShorterOrLonger()
{
    const std::vector<SeriesShape> shapes = seriesShapes(
        chart({series({1, 1}), series({2, 2, 2, 2, 2}), series({})}, Stacking::stacked), size);
    QCOMPARE(shapes[0].line, QPolygonF(QList<QPointF>{{0, 90}, {100, 90}}));
    QCOMPARE(shapes[1].line, QPolygonF({QPointF(0, 70), QPointF(100, 70), QPointF(200, 80)}));
    QCOMPARE(shapes.size(), std::size_t(2)); // A series without values has no shape.
}

void TestSeriesShape::anAbsentValueEndsAShape()
{
    const std::vector<SeriesShape> shapes =
        seriesShapes(chart({series({2, std::nullopt, 8})}), size);
    QCOMPARE(shapes.size(), std::size_t(2));
    QCOMPARE(shapes[0].line, QPolygonF({QPointF(-0.5, 80), QPointF(0.5, 80)})); // Alone: a dot.
    QCOMPARE(shapes[1].line, QPolygonF({QPointF(199.5, 20), QPointF(200.5, 20)}));
    QCOMPARE(shapes[1].fill,
             QPolygonF({QPointF(199.5, 100), QPointF(199.5, 20), QPointF(200.5, 20),
                        QPointF(200.5, 100), QPointF(199.5, 100)}));

    const std::vector<SeriesShape> two =
        seriesShapes(chart({series({2, 4, std::nullopt}), series({std::nullopt, 1, 1})}), size);
    QCOMPARE(two[0].line, QPolygonF({QPointF(0, 80), QPointF(100, 60)}));
    QCOMPARE(two[0].fill,
             QPolygonF({QPointF(0, 100), QPointF(0, 80), QPointF(100, 60), QPointF(100, 100),
                        QPointF(0, 100)}));
    QCOMPARE(two[1].series, std::size_t(1));
    QCOMPARE(two[1].line, QPolygonF({QPointF(100, 90), QPointF(200, 90)}));
    QVERIFY(seriesShapes(chart({series({std::nullopt, std::nullopt})}), size).empty());
}

void TestSeriesShape::anAbsentValueCountsAsZeroInAStack()
{
    const std::vector<SeriesShape> shapes = seriesShapes(
        chart({series({2, std::nullopt, 2}), series({1, 1, 1})}, Stacking::stacked), size);
    QCOMPARE(shapes.back().series, std::size_t(1));
    QCOMPARE(shapes.back().line, QPolygonF({QPointF(0, 70), QPointF(100, 90), QPointF(200, 70)}));
}

void TestSeriesShape::oneSampleHasNoArea()
{
    SparklineData data = chart({series({5})});
    data.timestamps = {10};
    const std::vector<SeriesShape> shapes = seriesShapes(data, size);
    QCOMPARE(shapes[0].line, QPolygonF(QList<QPointF>{{100, 50}}));
    QCOMPARE(shapes[0].fill, QPolygonF({QPointF(100, 100), QPointF(100, 50), QPointF(100, 100)}));
}

void TestSeriesShape::gapsAreStraight()
{
    SparklineData data = chart({series({2, 2, 8})});
    data.timestamps = {0, 1, 20};
    QCOMPARE(seriesShapes(data, size)[0].line,
             QPolygonF({QPointF(0, 80), QPointF(10, 80), QPointF(200, 20)}));
}

void TestSeriesShape::leavesOutSamplesWithoutAPlace()
{
    SparklineData data = chart({series({1, 2, 3, 4, 5})});
    data.timestamps = {-1, 0, 15, 10,
                       20.001}; // Too early, drawn, hidden by a clock jump, drawn, too late.
    const std::vector<SeriesShape> shapes = seriesShapes(data, size);
    QCOMPARE(shapes[0].line, QPolygonF(QList<QPointF>{{0, 80}, {100, 60}}));
    QCOMPARE(shapes[0].fill,
             QPolygonF({QPointF(0, 100), QPointF(0, 80), QPointF(100, 60), QPointF(100, 100),
                        QPointF(0, 100)}));
}

void TestSeriesShape::hostileNumbersStayOnTheChart()
{
    const double infinity = std::numeric_limits<double>::infinity();
    const std::vector<SeriesShape> shapes = seriesShapes(
        chart({series({notANumber, infinity, -infinity}), series({1, -infinity, infinity})},
              Stacking::stacked),
        size);
    for (const SeriesShape &shape : shapes) {
        for (const QPointF &point : shape.fill)
            QVERIFY(QRectF({}, size).adjusted(0, 0, 0.001, 0.001).contains(point));
    }
}

void TestSeriesShape::degenerateInputHasNoShapes_data()
{
    QTest::addColumn<double>("lastTime");
    QTest::addColumn<double>("highest");
    QTest::addColumn<bool>("hasSamples");
    QTest::newRow("a last instant that is the first") << 0.0 << 10.0 << true;
    QTest::newRow("no range of values") << 20.0 << 0.0 << true;
    QTest::newRow("no samples") << 20.0 << 10.0 << false;
}

void TestSeriesShape::degenerateInputHasNoShapes()
{
    QFETCH(double, lastTime);
    QFETCH(double, highest);
    QFETCH(bool, hasSamples);
    SparklineData data = chart({series({1, 2, 3})});
    data.xDomain.upper = lastTime;
    data.yDomain.upper = highest;
    if (!hasSamples)
        data.timestamps.clear();
    QVERIFY(seriesShapes(data, size).empty());
}

QTEST_APPLESS_MAIN(TestSeriesShape)
#include "tst_SeriesShape.moc"
