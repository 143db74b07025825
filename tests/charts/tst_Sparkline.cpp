#include "charts/HoverTime.h"
#include "charts/Sparkline.h"
#include "support/Rendering.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QEnterEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QTest>

#include <cmath>
#include <limits>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

const QColor red(200, 0, 0);
const QColor green(0, 200, 0);
const QColor blue(0, 0, 200);

/// A series with a transparent line, to see where fills end.
SparklineSeries area(const std::vector<double> &values, const QColor &color)
{
    return {.values = {values.begin(), values.end()},
            .lineColor = Qt::transparent,
            .fillColors = {color}};
}

/// Samples at 0, 10, 20 and 30 seconds, values 0 to 10, neither grid nor labels.
SparklineData plain(std::vector<SparklineSeries> series)
{
    return {.timestamps = {0, 10, 20, 30},
            .series = std::move(series),
            .xDomain = {0, 30},
            .yDomain = {0, 10},
            .showsGrid = false,
            .showsTimeLabels = false};
}

void hover(Sparkline &chart, double x)
{
    const QPointF place(x, 10);
    QMouseEvent move(QEvent::MouseMove, place, chart.mapToGlobal(place), Qt::NoButton, Qt::NoButton,
                     Qt::NoModifier);
    QApplication::sendEvent(&chart, &move);
}

void leave(Sparkline &chart)
{
    QEvent event(QEvent::Leave);
    QApplication::sendEvent(&chart, &event);
}

PillContent indexPill(std::size_t index)
{
    return {QString::number(index), {valuesRow({u"42%"_s}, Qt::white)}};
}

/// Counts paint events of a widget.
class PaintCounter : public QObject {
public:
    explicit PaintCounter(QWidget &widget) { widget.installEventFilter(this); }
    int count = 0;

protected:
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            ++count;
        return false;
    }
};

} // namespace

class TestSparkline : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("TZ", "UTC"); }

    void stackedBandsEndAtTheirSums_data() { addScales(); }
    void stackedBandsEndAtTheirSums();
    void overlaidSeriesPaintOverEarlierOnes();
    void gradientRunsFromEdgeToEdge();
    void fillsHaveNoSeams_data() { addScales(); }
    void fillsHaveNoSeams();
    void drawsTheLineOverTheFill_data() { addScales(); }
    void drawsTheLineOverTheFill();
    void sharpBendsAreRound();
    void layersLieInOrder();
    void gridIsOnePoint_data() { addScales(); }
    void gridIsOnePoint();
    void cursorIsOnePoint_data() { addScales(); }
    void cursorIsOnePoint();
    void cursorShowsOnDegenerateCharts();
    void cursorFollowsThePointer();
    void cursorStaysWithNewData();
    void repaintsEverythingThatChanged();
    void cursorKeepsToARestingPointer();
    void cursorOfTheKeysKeepsToItsSample();
    void cursorGoesWithTheChart();
    void pillKeepsInsideTheChart_data() { addScales(); }
    void pillKeepsInsideTheChart();
    void pillNeedsABuilderAndSamples();
    void hoversBeyondTheEndOfAShorterSeries();
    void labelsHaveTags_data() { addScales(); }
    void labelsHaveTags();
    void aLineDoesNotStrikeLabelsThrough();
    void labelsFollowTheLocale();
    void labelsNeedRoom_data();
    void labelsNeedRoom();
    void keysMoveTheCursor();
    void keysSkipSamplesWithoutAPlace();
    void ignoresOtherKeys();
    void focusIsVisible();
    void copiesTheSamplesInView();
    void losingTheFocusClearsTheCursor();
    void accessibleValueIsThePillOfTheCursorOrTheNewestSample();
    void repaintsOnlyChanges();
    void drawsHostileData_data();
    void drawsHostileData();

private:
    static void addScales()
    {
        QTest::addColumn<double>("scale");
        QTest::newRow("scale 1") << 1.0;
        QTest::newRow("scale 1.25") << 1.25;
        QTest::newRow("scale 1.5") << 1.5;
        QTest::newRow("scale 2") << 2.0;
    }
};

void TestSparkline::stackedBandsEndAtTheirSums()
{
    QFETCH(double, scale);
    Sparkline chart;
    chart.resize(200, 100);
    SparklineData data =
        plain({area({1, 1, 1, 1}, red), area({2, 2, 2, 2}, green), area({3, 3, 3, 3}, blue)});
    data.stacking = Stacking::stacked;
    chart.show(data);
    const QImage image = rendered(chart, scale);
    for (const double x : {1.0, 100.0, 198.0}) {
        QCOMPARE(pixelAt(image, x, 38).alpha(), 0);
        QCOMPARE(pixelAt(image, x, 41), blue); // The third band's top is at 6 of 10.
        QCOMPARE(pixelAt(image, x, 68), blue);
        QCOMPARE(pixelAt(image, x, 71), green);
        QCOMPARE(pixelAt(image, x, 88), green);
        QCOMPARE(pixelAt(image, x, 91), red);
        QCOMPARE(pixelAt(image, x, 99), red);
    }
}

void TestSparkline::overlaidSeriesPaintOverEarlierOnes()
{
    Sparkline chart;
    chart.resize(200, 100);
    chart.show(plain({area({8, 8, 8, 8}, red), area({3, 3, 3, 3}, green)}));
    const QImage image = rendered(chart, 1);
    QCOMPARE(pixelAt(image, 100, 19).alpha(), 0);
    QCOMPARE(pixelAt(image, 100, 21), red);
    QCOMPARE(pixelAt(image, 100, 69), red);
    QCOMPARE(pixelAt(image, 100, 71), green);
    QCOMPARE(pixelAt(image, 100, 99), green);
}

void TestSparkline::gradientRunsFromEdgeToEdge()
{
    Sparkline chart;
    chart.resize(100, 100);
    SparklineSeries fading = area({5, 5, 5, 5}, red);
    fading.fillColors = {QColor(255, 255, 255, 200), QColor(255, 255, 255, 0)};
    chart.show(plain({fading}));
    const QImage image = rendered(chart, 1);
    // The fill starts half way down: the first colour is at the top of the chart.
    QVERIFY(std::abs(pixelAt(image, 50, 51).alpha() - 97) <= 3);
    QVERIFY(std::abs(pixelAt(image, 50, 75).alpha() - 49) <= 3);
    QVERIFY(pixelAt(image, 50, 99).alpha() <= 3);
}

void TestSparkline::fillsHaveNoSeams()
{
    QFETCH(double, scale);
    Sparkline chart;
    chart.resize(301, 100);
    SparklineData data =
        plain({area({}, QColor(0, 120, 200, 140)), area({}, QColor(200, 90, 0, 140))});
    data.stacking = Stacking::stacked;
    data.timestamps.clear();
    for (int i = 0; i < 83; ++i) {
        data.timestamps.push_back(i * 30.0 / 82);
        data.series[0].values.push_back(3 + 2 * std::sin(i * 0.7));
        data.series[1].values.push_back(3 + 2 * std::sin(i * 1.9));
    }
    chart.show(data);
    const QImage image = rendered(chart, scale);

    QImage whole(image.size(), image.format());
    whole.setDevicePixelRatio(scale);
    whole.fill(Qt::transparent);
    QPainter painter(&whole);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const std::vector<SeriesShape> shapes = seriesShapes(data, chart.size());
    for (std::size_t i = 0; i < shapes.size(); ++i) {
        painter.setBrush(data.series[i].fillColors.front());
        painter.drawPolygon(shapes[i].fill, Qt::WindingFill);
    }
    painter.end();
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            QVERIFY(std::abs(image.pixelColor(x, y).alpha() - whole.pixelColor(x, y).alpha()) <= 2);
    }
}

void TestSparkline::drawsTheLineOverTheFill()
{
    QFETCH(double, scale);
    Sparkline chart;
    chart.resize(200, 100);
    SparklineSeries series = area({5, 5, 5, 5}, red);
    series.lineColor = blue;
    series.lineWidth = 4;
    chart.show(plain({series}));
    const QImage image = rendered(chart, scale);
    QCOMPARE(pixelAt(image, 100, 47).alpha(), 0);
    QCOMPARE(pixelAt(image, 100, 49), blue);
    QCOMPARE(pixelAt(image, 100, 51), blue);
    QCOMPARE(pixelAt(image, 100, 53), red);
}

/// A mitre would reach 6 points higher.
void TestSparkline::sharpBendsAreRound()
{
    Sparkline chart;
    chart.resize(60, 100);
    SparklineSeries series = area({2, 2, 8, 2}, red);
    series.fillColors.clear();
    series.lineWidth = 6;
    series.lineColor = blue;
    chart.show(plain({series}));
    const QImage image = rendered(chart, 4);
    QCOMPARE(pixelAt(image, 40, 17.5), blue);
    QCOMPARE(pixelAt(image, 40, 16.5).alpha(), 0);
}

/// From the back: grid, band, fill, line, cursor, tag of a time label, pill.
void TestSparkline::layersLieInOrder()
{
    Sparkline chart;
    chart.resize(300, 100);
    SparklineData data = plain({area({5, 5, 5, 5}, red)});
    data.series[0].lineColor = blue;
    data.series[0].lineWidth = 6;
    data.showsGrid = true; // Where the line is.
    data.showsTimeLabels = true;
    chart.show(data);
    const auto over = [](const QColor &upper, const QColor &lower) {
        QImage image(1, 1, QImage::Format_ARGB32_Premultiplied);
        image.fill(lower);
        QPainter painter(&image);
        painter.fillRect(image.rect(), upper);
        painter.end();
        return image.pixelColor(0, 0);
    };
    QImage image = rendered(chart, 1);
    QCOMPARE(pixelAt(image, 100, 49.5), blue); // Neither the grid nor the fill covers the line.
    QCOMPARE(pixelAt(image, 100, 52), blue);
    QCOMPARE(pixelAt(image, 100, 60), red);
    QVERIFY(isClose(pixelAt(image, 2, 93), over(Theme::timeLabelTag, red)));

    SparklineData means = data;
    means.showsMeans = true;
    means.band.assign(4, ChartRange{2, 8});
    means.bandColor = Qt::green;
    chart.show(means);
    image = rendered(chart, 1);
    QCOMPARE(pixelAt(image, 100, 30), QColor(Qt::green));
    QCOMPARE(pixelAt(image, 100, 49.5), blue);
    QCOMPARE(pixelAt(image, 100, 60), red);
    means.series[0].fillColors.clear();
    means.series[0].lineColor = Qt::transparent;
    chart.show(means);
    QCOMPARE(pixelAt(rendered(chart, 1), 100, 50), QColor(Qt::green)); // It covers the grid.
    chart.show(data);

    hover(chart, 2);
    image = rendered(chart, 1);
    QVERIFY(isClose(pixelAt(image, 2, 50), over(Theme::chartCursor, blue)));
    QVERIFY(isClose(pixelAt(image, 2, 60), over(Theme::chartCursor, red)));
    QVERIFY(
        isClose(pixelAt(image, 2, 93), over(Theme::timeLabelTag, over(Theme::chartCursor, red))));

    chart.setHoverPill(indexPill);
    hover(chart, 150);
    image = rendered(chart, 1);
    QVERIFY(pixelAt(image, 150, 4).lightness() < 80); // The pill covers the cursor,
    data.series[0].values = {9, 9, 9, 9};
    chart.show(data);
    QVERIFY(pixelAt(rendered(chart, 1), 150, 10).blue() < 100); // and the line.
}

/// The opacities above 0 in a column or row of device pixels, and the index of the first.
struct Ink {
    int first = -1;
    QList<int> alphas;
};

static Ink inkOf(const QList<int> &alphas)
{
    Ink ink;
    for (int i = 0; i < alphas.size(); ++i) {
        if (alphas[i] == 0)
            continue;
        if (ink.first < 0)
            ink.first = i;
        ink.alphas.append(alphas[i]);
    }
    return ink;
}

void TestSparkline::gridIsOnePoint()
{
    QFETCH(double, scale);
    Sparkline chart;
    chart.resize(80, 40);
    SparklineData data = plain({});
    data.showsGrid = true;
    chart.show(data);
    const QImage image = rendered(chart, scale);
    for (const int x : {0, image.width() / 2, image.width() - 1}) {
        QList<int> column;
        for (int y = 0; y < image.height(); ++y)
            column.append(image.pixelColor(x, y).alpha());
        const Ink ink = inkOf(column);
        QCOMPARE(ink.alphas, QList<int>(qRound(scale), 13)); // White at 0.05.
        QVERIFY(std::abs(ink.first + qRound(scale) / 2.0 - image.height() / 2.0) <= 0.5);
    }
}

void TestSparkline::cursorIsOnePoint()
{
    QFETCH(double, scale);
    Sparkline chart;
    chart.resize(80, 40);
    chart.show(plain({}));
    for (const double x : {0.0, 20.3, 40.0, 79.9, 80.0}) {
        hover(chart, x);
        const QImage image = rendered(chart, scale);
        for (const int y : {0, image.height() - 1}) {
            QList<int> row;
            for (int column = 0; column < image.width(); ++column)
                row.append(image.pixelColor(column, y).alpha());
            const Ink ink = inkOf(row);
            QCOMPARE(ink.alphas, QList<int>(qRound(scale), 89)); // White at 0.35.
            QVERIFY(std::abs(ink.first + qRound(scale) / 2.0 - x * scale) <= 1);
        }
    }
}

void TestSparkline::cursorShowsOnDegenerateCharts()
{
    Sparkline chart;
    chart.resize(80, 40);
    chart.show({.xDomain = {5, 5}, .yDomain = {1, 0}, .showsGrid = true, .showsTimeLabels = false});
    hover(chart, 20);
    const QImage image = rendered(chart, 1);
    QVERIFY(pixelAt(image, 20, 5).alpha() > 0);
    QVERIFY(pixelAt(image, 50, 20).alpha() > 0);
    QVERIFY(!chart.hoveredIndex());
}

void TestSparkline::cursorFollowsThePointer()
{
    Sparkline chart;
    chart.resize(300, 100);
    chart.show(plain({area({1, 2, 3, 4}, red)}));
    QVERIFY(!chart.cursorX());

    QEnterEvent enter({120, 5}, {120, 5}, {120, 5});
    QApplication::sendEvent(&chart, &enter);
    QCOMPARE(chart.cursorX(), std::optional(120.0));
    QCOMPARE(chart.hoveredIndex(), std::optional<std::size_t>(1));
    hover(chart, 150); // Half way: the earlier one.
    QCOMPARE(chart.hoveredIndex(), std::optional<std::size_t>(1));
    hover(chart, 150.5);
    QCOMPARE(chart.hoveredIndex(), std::optional<std::size_t>(2));
    hover(chart, 0);
    QCOMPARE(chart.cursorX(), std::optional(0.0));
    hover(chart, 300);
    QCOMPARE(chart.cursorX(), std::optional(300.0));
    hover(chart, 300.5);
    QVERIFY(!chart.cursorX());
    hover(chart, 20);
    hover(chart, -0.5);
    QVERIFY(!chart.cursorX());
    hover(chart, 20);
    leave(chart);
    QVERIFY(!chart.cursorX());
    QVERIFY(!chart.hoveredIndex());
}

void TestSparkline::cursorStaysWithNewData()
{
    Sparkline chart;
    chart.resize(300, 100);
    std::vector<std::size_t> asked;
    chart.setHoverPill([&asked](std::size_t index) {
        asked.push_back(index);
        return indexPill(index);
    });
    chart.show(plain({area({1, 2, 3, 4}, red)}));
    hover(chart, 100);
    QCOMPARE(asked.back(), std::size_t(1));

    SparklineData later = plain({area({1, 2, 3, 4}, red)});
    later.timestamps = {0, 2, 4, 10, 30};
    chart.show(later);
    QCOMPARE(chart.cursorX(), std::optional(100.0));
    QCOMPARE(asked.back(), std::size_t(3));

    // The pill is built again even if the data are equal, since its builder may know more.
    const std::size_t before = asked.size();
    chart.show(later);
    QVERIFY(asked.size() > before);
}

/// After each change the screen is the same as a complete repaint.
void TestSparkline::repaintsEverythingThatChanged()
{
    Sparkline chart;
    chart.resize(300, 100);
    chart.setHoverPill(indexPill);
    chart.QWidget::show();
    SparklineData data = plain({area({1, 9, 3, 4}, red)});
    data.showsTimeLabels = true;
    SparklineData later = data;
    later.series[0].values = {9, 3, 4, 1};
    later.xDomain = {10, 40};
    const std::vector<std::function<void()>> changes{
        [&] { chart.show(data); },
        [&] { hover(chart, 20); },
        [&] { hover(chart, 290); },
        [&] { chart.show(later); },
        [&] { chart.setHoverPill({}); },
        [&] { leave(chart); },
        [&] { chart.setLocale(QLocale(QLocale::Arabic, QLocale::Egypt)); },
        [&] { chart.show(plain({})); }};
    QImage screen = onScreen(chart);
    for (const std::function<void()> &change : changes) {
        change();
        const QImage next = onScreen(chart);
        QVERIFY(next != screen);
        screen = next;
        QCOMPARE(stalePixels(chart), QRect());
    }
}

void TestSparkline::cursorKeepsToARestingPointer()
{
    QWidget window;
    auto *card = new QWidget(&window);
    Sparkline chart(card);
    window.resize(600, 200);
    card->setGeometry(100, 0, 400, 200);
    chart.setGeometry(50, 50, 300, 100);
    chart.show(plain({}));
    chart.setHoverPill(indexPill);
    window.show();
    const QPointF place(100, 20);
    const QPointF global = chart.mapToGlobal(place);
    QMouseEvent move(QEvent::MouseMove, place, global, Qt::NoButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&chart, &move);
    QCOMPARE(chart.cursorX(), std::optional(100.0));
    QCOMPARE(chart.accessibleValue(), u"1, 42%"_s);

    chart.setGeometry(30, 50, 330, 100);
    QCOMPARE(chart.cursorX(), std::optional(120.0));
    chart.move(10, 50);
    QCOMPARE(chart.cursorX(), std::optional(140.0));
    chart.resize(150, 100); // Another sample is below the pointer.
    QCOMPARE(chart.accessibleValue(), u"3, 42%"_s);
    card->move(110, 0); // The next data follow the card.
    chart.show(plain({}));
    QCOMPARE(chart.cursorX(), std::optional(130.0));
    chart.move(200, 50);
    QVERIFY(!chart.cursorX()); // The pointer is outside.
    chart.move(20, 50);
    QCOMPARE(chart.cursorX(), std::optional(120.0));
    leave(chart);
    chart.move(10, 50);
    QVERIFY(!chart.cursorX());
}

void TestSparkline::cursorOfTheKeysKeepsToItsSample()
{
    Sparkline chart;
    chart.resize(300, 100);
    chart.show(plain({}));
    chart.QWidget::show();
    QTest::keyClick(&chart, Qt::Key_Home);
    QTest::keyClick(&chart, Qt::Key_Right);
    QCOMPARE(chart.cursorX(), std::optional(100.0));
    chart.resize(150, 100);
    QCOMPARE(chart.cursorX(), std::optional(50.0));
    QCOMPARE(chart.hoveredIndex(), std::optional<std::size_t>(1));
}

void TestSparkline::cursorGoesWithTheChart()
{
    Sparkline chart;
    chart.resize(300, 100);
    chart.show(plain({}));
    chart.show();
    hover(chart, 200);
    chart.resize(250, 100);
    QCOMPARE(chart.cursorX(), std::optional(200.0));
    chart.resize(150, 100);
    QVERIFY(!chart.cursorX());
    hover(chart, 100);
    chart.hide();
    QVERIFY(!chart.cursorX());
}

void TestSparkline::pillKeepsInsideTheChart()
{
    QFETCH(double, scale);
    Sparkline chart;
    chart.resize(300, 100);
    chart.show(plain({area({1, 2, 3, 4}, red)}));
    chart.setHoverPill(indexPill);
    HoverPill pill;
    pill.show(indexPill(0));
    const double width = pill.size().width();

    // Left end, top end and right end of the box, by its opaque inside.
    const auto isBox = [](const QColor &color) { return color.alpha() > 240 && color.blue() < 80; };
    hover(chart, 1);
    QImage image = rendered(chart, scale);
    QVERIFY(!isBox(pixelAt(image, 3, 12)));
    QVERIFY(isBox(pixelAt(image, 7, 12)));
    QVERIFY(!isBox(pixelAt(image, 4 + width / 2, 1)));
    QVERIFY(isBox(pixelAt(image, 4 + width / 2, 5)));
    QVERIFY(!isBox(pixelAt(image, 4 + width + 2, 12)));

    hover(chart, 299);
    image = rendered(chart, scale);
    QVERIFY(isBox(pixelAt(image, 293, 12)));
    QVERIFY(!isBox(pixelAt(image, 297, 12)));

    hover(chart, 150);
    image = rendered(chart, scale);
    QVERIFY(isBox(pixelAt(image, 150 - width / 2 + 3, 12)));
    QVERIFY(!isBox(pixelAt(image, 150 - width / 2 - 2, 12)));
}

void TestSparkline::pillNeedsABuilderAndSamples()
{
    Sparkline chart;
    chart.resize(300, 100);
    chart.show(plain({}));
    hover(chart, 150);
    QCOMPARE(pixelAt(rendered(chart, 1), 140, 12).alpha(), 0);
    chart.setHoverPill(indexPill);
    QVERIFY(pixelAt(rendered(chart, 1), 140, 12).alpha() > 240);
    SparklineData empty = plain({});
    empty.timestamps.clear();
    chart.show(empty);
    QCOMPARE(pixelAt(rendered(chart, 1), 140, 12).alpha(), 0);
    QVERIFY(pixelAt(rendered(chart, 1), 150, 12).alpha() > 0); // The cursor stays.
}

void TestSparkline::hoversBeyondTheEndOfAShorterSeries()
{
    Sparkline chart;
    chart.resize(300, 100);
    chart.show(plain({area({1, 2}, red)}));
    hover(chart, 290);
    QCOMPARE(chart.hoveredIndex(), std::optional<std::size_t>(3));
}

void TestSparkline::labelsHaveTags()
{
    QFETCH(double, scale);
    Sparkline chart;
    chart.setLocale(QLocale(u"de_DE"_s));
    chart.resize(300, 60);
    SparklineData data = plain({});
    data.showsTimeLabels = true;
    chart.show(data);
    const QImage image = rendered(chart, scale);
    const QColor tag = Theme::timeLabelTag;
    for (const double x : {2.5, 150.0 - 13, 297.0}) {
        QVERIFY(isClose(pixelAt(image, x, 48.5), tag, 8));
        QVERIFY(isClose(pixelAt(image, x, 57.5), tag, 8));
        QCOMPARE(pixelAt(image, x, 45).alpha(), 0);
    }
    QCOMPARE(pixelAt(image, 80, 53).alpha(), 0);
    // The labels have ink, but not in the last point above the edge.
    int brightest = 0;
    for (double x = 4; x < 28; x += 1 / scale) {
        for (double y = 48; y < 58; y += 1 / scale)
            brightest = std::max(brightest, pixelAt(image, x, y).lightness());
    }
    QVERIFY(brightest > 60);
    for (double x = 0; x < 300; x += 1 / scale)
        QCOMPARE(pixelAt(image, x, 59.5).alpha(), 0);
}

/// A line behind a label shows with a fifth of its brightness, less than the label's text.
void TestSparkline::aLineDoesNotStrikeLabelsThrough()
{
    Sparkline chart;
    chart.resize(300, 60);
    SparklineData data = plain({{.values = {1, 1, 1, 1}, .lineColor = Qt::white, .lineWidth = 2}});
    data.showsTimeLabels = true;
    chart.show(data);
    const QImage image = rendered(chart, 1);
    QCOMPARE(pixelAt(image, 80, 53), QColor(Qt::white));
    QVERIFY(pixelAt(image, 2, 53).lightness() < 0.3 * 255); // In the margin of the first label.
}

void TestSparkline::labelsFollowTheLocale()
{
    Sparkline chart;
    chart.resize(300, 60);
    SparklineData data = plain({});
    data.timestamps.clear();
    data.xDomain = {50'700, 50'760}; // 14:05 to 14:06.
    data.showsTimeLabels = true;
    chart.setLocale(QLocale(u"de_DE"_s));
    chart.show(data);
    const QImage german = rendered(chart, 1);
    chart.setLocale(QLocale(u"en_US"_s));
    QVERIFY(rendered(chart, 1) != german);
    chart.setLocale(QLocale(u"de_DE"_s));
    QCOMPARE(rendered(chart, 1), german);
}

void TestSparkline::labelsNeedRoom_data()
{
    constexpr double day = 86'400;
    QTest::addColumn<double>("seconds");
    QTest::addColumn<int>("width");
    QTest::addColumn<int>("labels");
    QTest::newRow("wide enough for three") << 30.0 << 160 << 3;
    QTest::newRow("the middle one is left out first") << 30.0 << 159 << 2;
    QTest::newRow("wide enough for two") << 30.0 << 72 << 2;
    QTest::newRow("the first alone") << 30.0 << 71 << 1;
    QTest::newRow("three with weekdays") << day << 360 << 3;
    QTest::newRow("three with weekdays would cover the chart") << day << 180 << 2;
}

void TestSparkline::labelsNeedRoom()
{
    QFETCH(const double, seconds);
    QFETCH(int, width);
    QFETCH(int, labels);
    Sparkline chart;
    chart.resize(width, 40);
    SparklineData data = plain({});
    data.showsTimeLabels = true;
    data.showsMeans = seconds > 60;
    data.xDomain = {0, seconds};
    chart.show(data);
    const QImage image = rendered(chart, 1);
    QVERIFY(pixelAt(image, 3, 34).alpha() > 0);
    QCOMPARE(pixelAt(image, width - 3, 34).alpha() > 0, labels >= 2);
    QCOMPARE(pixelAt(image, width / 2.0, 34).alpha() > 0, labels == 3);
}

void TestSparkline::keysMoveTheCursor()
{
    Sparkline chart;
    chart.resize(300, 100);
    chart.show(plain({area({1, 2, 3, 4}, red)}));
    const auto press = [&chart](Qt::Key key) {
        QTest::keyClick(&chart, key);
        return chart.cursorX().value_or(-1);
    };
    QCOMPARE(press(Qt::Key_Left), 300.0); // The first step goes to the newest.
    QCOMPARE(press(Qt::Key_Left), 200.0);
    QCOMPARE(press(Qt::Key_Right), 300.0);
    QCOMPARE(press(Qt::Key_Right), 300.0);
    QCOMPARE(press(Qt::Key_Home), 0.0);
    QCOMPARE(press(Qt::Key_Left), 0.0);
    QCOMPARE(press(Qt::Key_Right), 100.0);
    QCOMPARE(press(Qt::Key_End), 300.0);
    QCOMPARE(press(Qt::Key_Escape), -1.0);
    QCOMPARE(press(Qt::Key_Home), 0.0);
    hover(chart, 130); // From the pointer: to the sample beside the nearest.
    QCOMPARE(press(Qt::Key_Right), 200.0);
}

void TestSparkline::keysSkipSamplesWithoutAPlace()
{
    Sparkline chart;
    chart.resize(300, 100);
    SparklineData data = plain({});
    data.timestamps = {-5, 0,  20, 10,
                       10, 10, 30, 40}; // Outside, hidden by a clock jump, three equal.
    chart.show(data);
    QList<double> stops;
    QTest::keyClick(&chart, Qt::Key_Home);
    for (int i = 0; i < 4; ++i) {
        stops.append(chart.cursorX().value_or(-1));
        QTest::keyClick(&chart, Qt::Key_Right);
    }
    QCOMPARE(stops, (QList<double>{0, 100, 300, 300}));

    data.timestamps.clear();
    chart.show(data);
    QTest::keyClick(&chart, Qt::Key_Left);
    QCOMPARE(chart.cursorX(), std::optional(300.0));
}

void TestSparkline::ignoresOtherKeys()
{
    Sparkline chart;
    chart.resize(300, 100);
    chart.show(plain({}));
    for (const Qt::Key key : {Qt::Key_Escape, Qt::Key_Up, Qt::Key_A}) {
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
        press.accept();
        QApplication::sendEvent(&chart, &press);
        QVERIFY(!press.isAccepted()); // Escape without a cursor is for the window.
    }
}

void TestSparkline::focusIsVisible()
{
    QWidget window;
    Sparkline chart(&window);
    chart.setGeometry(10, 10, 100, 50);
    chart.show(plain({}));
    window.resize(120, 70);
    window.show();
    QVERIFY(QTest::qWaitForWindowActive(&window));
    chart.clearFocus();
    QCOMPARE(pixelAt(rendered(window, 1), 60, 7).alpha(), 0);
    QVERIFY(chart.focusPolicy() & Qt::TabFocus);
    chart.setFocus(Qt::TabFocusReason);
    QVERIFY(isClose(pixelAt(rendered(window, 1), 60, 7), Theme::focusRing)); // 3 above the chart.
    QCOMPARE(pixelAt(rendered(window, 1), 60, 10).alpha(), 0);
    QVERIFY(hasRoundCorner(rendered(window, 8), {7, 7}, 4, Theme::focusRing));
}

void TestSparkline::copiesTheSamplesInView()
{
    QWidget window;
    QAction command(u"Command"_s);
    window.addAction(&command);
    Sparkline chart(&window);
    chart.resize(300, 100);
    SparklineData data = plain({area({1, 2, 3, 4}, red)});
    data.xDomain = {10, 30}; // The first sample is outside.
    chart.show(data);
    chart.setHoverPill([](std::size_t index) {
        return PillContent{u"00:00:%1"_s.arg(10 * index),
                           {totalRow(u"9 W"_s, red), componentRow(u"CPU"_s, u"\u2013"_s, red),
                            valuesRow({u"42%"_s, u"1.20GHz"_s}, red)}};
    });
    window.show();
    const QString expected = u"00:00:10\t9 W\t\u2013\t42%\t1.20GHz\n"
                             "00:00:20\t9 W\t\u2013\t42%\t1.20GHz\n"
                             "00:00:30\t9 W\t\u2013\t42%\t1.20GHz"_s;
    QTest::keySequence(&chart, QKeySequence::Copy);
    QCOMPARE(QGuiApplication::clipboard()->text(), expected);

    QGuiApplication::clipboard()->clear();
    QContextMenuEvent click(QContextMenuEvent::Mouse, {50, 50}, chart.mapToGlobal(QPoint(50, 50)));
    QApplication::sendEvent(&chart, &click);
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    QVERIFY(menu);
    QCOMPARE(menu->actions().first()->text(), u"Copy"_s);
    QCOMPARE(menu->actions().last(), &command); // Those of the window are still there.
    menu->actions().first()->trigger();
    QCOMPARE(QGuiApplication::clipboard()->text(), expected);
    menu->close();
}

void TestSparkline::losingTheFocusClearsTheCursor()
{
    Sparkline chart;
    chart.resize(300, 100);
    chart.show(plain({}));
    QTest::keyClick(&chart, Qt::Key_End);
    QVERIFY(chart.cursorX());
    QFocusEvent lost(QEvent::FocusOut);
    QApplication::sendEvent(&chart, &lost);
    QVERIFY(!chart.cursorX());
}

void TestSparkline::accessibleValueIsThePillOfTheCursorOrTheNewestSample()
{
    Sparkline chart;
    chart.resize(300, 100);
    QCOMPARE(chart.accessibleValue(), QString());
    chart.setHoverPill(indexPill);
    QCOMPARE(chart.accessibleValue(), QString());
    chart.show(plain({}));
    QCOMPARE(chart.accessibleValue(), u"3, 42%"_s);
    hover(chart, 90);
    QCOMPARE(chart.accessibleValue(), u"1, 42%"_s);
}

void TestSparkline::repaintsOnlyChanges()
{
    Sparkline chart;
    chart.resize(300, 100);
    PaintCounter paints(chart);
    const SparklineData data = plain({area({1, 2, 3, 4}, red)});
    chart.show(data);
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, 0); // Hidden.

    chart.show();
    QVERIFY(QTest::qWaitForWindowExposed(&chart));
    QCoreApplication::processEvents();
    const int shown = paints.count;
    QVERIFY(shown > 0);
    chart.show(data);
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, shown);

    chart.show(plain({area({1, 2, 3, 5}, red)}));
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, shown + 1);
    hover(chart, 50);
    hover(chart, 50);
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, shown + 2);

    chart.hide();
    chart.show(data);
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, shown + 2);
}

void TestSparkline::drawsHostileData_data()
{
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    QTest::addColumn<std::vector<double>>("timestamps");
    QTest::addColumn<std::vector<double>>("values");
    std::vector<double> many;
    std::vector<double> wild;
    for (int i = 0; i < 10'000; ++i) {
        many.push_back(i * 30.0 / 9'999);
        wild.push_back(i % 100 == 0 ? 1e9 : 5 + 4 * std::sin(i * 0.01));
    }
    QTest::newRow("10,000 samples") << many << wild;
    std::ranges::reverse(many);
    QTest::newRow("10,000 samples backwards") << many << wild;
    QTest::newRow("values that are not numbers") << std::vector<double>{notANumber, notANumber, 5}
                                                 << std::vector<double>{notANumber, 1, notANumber};
    QTest::newRow("infinite values") << std::vector<double>{-infinity, 3, infinity}
                                     << std::vector<double>{infinity, -infinity, infinity};
    QTest::newRow("largest numbers")
        << std::vector<double>{0, 15, 30} << std::vector<double>{1e308, -1e308, 1e308};
    QTest::newRow("more values than samples") << std::vector<double>{1} << wild;
    QTest::newRow("more samples than values") << many << std::vector<double>{1};
}

void TestSparkline::drawsHostileData()
{
    QFETCH(std::vector<double>, timestamps);
    QFETCH(std::vector<double>, values);
    Sparkline chart;
    chart.setHoverPill(indexPill);
    chart.resize(300, 100);
    SparklineSeries series = area(values, red);
    series.lineColor = blue;
    for (const Stacking stacking : {Stacking::overlay, Stacking::stacked}) {
        SparklineData data = plain({series, series, SparklineSeries{}});
        data.timestamps = timestamps;
        data.stacking = stacking;
        data.showsTimeLabels = true;
        chart.show(data);
        hover(chart, 150);
        for (const Qt::Key key : {Qt::Key_Left, Qt::Key_Right, Qt::Key_Home, Qt::Key_End})
            QTest::keyClick(&chart, key);
        for (const double scale : {1.0, 2.0})
            QCOMPARE(rendered(chart, scale).size(), (QSizeF(300, 100) * scale).toSize());
    }
    // The time range of the chart may be unusable too.
    SparklineData data = plain({series});
    data.timestamps = timestamps;
    data.xDomain = {-std::numeric_limits<double>::infinity(), 1e308};
    data.showsTimeLabels = true;
    chart.show(data);
    const QImage image = rendered(chart, 1);
    QCOMPARE(image.pixelColor(20, 90).alpha(), 0); // No series.
}

QTEST_MAIN(TestSparkline)
#include "tst_Sparkline.moc"
