#include "charts/CoreBars.h"
#include "support/Rendering.h"
#include "ui/Theme.h"

#include <QTest>

#include <limits>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestCoreBars : public QObject {
    Q_OBJECT

private slots:
    void fillsFromTheBottom_data();
    void fillsFromTheBottom();
    void splitsTheRowEvenly();
    void fitsTheWidth_data();
    void fitsTheWidth();
    void fewBarsStayNarrow_data();
    void fewBarsStayNarrow();
    void neighboursShareABarByTheirMean();
    void isAsHighAsBarsAndCaptions();
    void paintsTrackAndFill_data();
    void paintsTrackAndFill();
    void captionsAreCentredBelowTheirBars();
    void fewerCaptionsAreWider();
    void repaintsEverythingThatChanged();
    void equalLoadsRepaintNothing();
    void emptyPaintsNothing();
    void itsAccessibleValueIsTheLoads();
    void paintsManyCoresAndHostileNumbers();
};

void TestCoreBars::fillsFromTheBottom_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<double>("expected");
    QTest::newRow("half") << 0.5 << 15.0;
    QTest::newRow("idle is a sliver") << 0.0 << 2.0;
    QTest::newRow("nearly idle is a sliver too") << 0.01 << 2.0;
    QTest::newRow("just above the sliver") << 0.1 << 3.0;
    QTest::newRow("full") << 1.0 << 30.0;
    QTest::newRow("above full is full") << 1.4 << 30.0;
    QTest::newRow("negative is a sliver") << -0.5 << 2.0;
    QTest::newRow("not a number is full") << std::numeric_limits<double>::quiet_NaN() << 30.0;
    QTest::newRow("infinite is full") << std::numeric_limits<double>::infinity() << 30.0;
}

void TestCoreBars::fillsFromTheBottom()
{
    QFETCH(double, value);
    QFETCH(double, expected);
    QCOMPARE(barFill(QRectF(10, 5, 8, 30), value), QRectF(10, 35 - expected, 8, expected));
}

void TestCoreBars::splitsTheRowEvenly()
{
    const std::vector<QRectF> bars = evenRow(10, QRectF(0, 0, 200, 30), 3);
    QCOMPARE(bars.size(), std::size_t(10));
    for (const QRectF &bar : bars)
        QCOMPARE(bar.size(), QSizeF(17.3, 30));
    QCOMPARE(bars[1].x(), 20.3);
    QCOMPARE(bars[9].right(), 200.0);
    QVERIFY(evenRow(0, QRectF(0, 0, 200, 30), 3).empty());
    QCOMPARE(evenRow(100, QRectF(0, 0, 50, 30), 3)[5].width(), 0.0);
}

void TestCoreBars::fitsTheWidth_data()
{
    QTest::addColumn<std::size_t>("cores");
    QTest::addColumn<std::size_t>("coresPerBar");
    QTest::addColumn<double>("spacing");
    QTest::addColumn<double>("height");
    QTest::addColumn<bool>("captions");
    QTest::addColumn<double>("radius");
    // In a width of 260 points.
    QTest::newRow("13 points a core have captions")
        << std::size_t(20) << std::size_t(1) << 3.0 << 40.0 << true << 2.0;
    QTest::newRow("less has none")
        << std::size_t(21) << std::size_t(1) << 3.0 << 52.0 << false << 2.0;
    QTest::newRow("8 points a core")
        << std::size_t(32) << std::size_t(1) << 3.0 << 52.0 << false << 2.0;
    QTest::newRow("7.9 points a core")
        << std::size_t(33) << std::size_t(1) << 2.0 << 52.0 << false << 2.0;
    QTest::newRow("5 points a core")
        << std::size_t(52) << std::size_t(1) << 2.0 << 52.0 << false << 1.5;
    QTest::newRow("4.9 points a core")
        << std::size_t(53) << std::size_t(1) << 1.0 << 52.0 << false << 1.9528;
    QTest::newRow("4 points a core")
        << std::size_t(65) << std::size_t(1) << 1.0 << 52.0 << false << 1.5;
    QTest::newRow("less than 4 points a core: two share a bar")
        << std::size_t(66) << std::size_t(2) << 2.0 << 52.0 << false << 2.0;
    QTest::newRow("128 cores") << std::size_t(128) << std::size_t(2) << 1.0 << 52.0 << false
                               << 1.5313;
    QTest::newRow("192 cores") << std::size_t(192) << std::size_t(4) << 2.0 << 52.0 << false
                               << 1.7083;
    QTest::newRow("1,024 cores") << std::size_t(1'024) << std::size_t(16) << 1.0 << 52.0 << false
                                 << 1.5313;
}

void TestCoreBars::fitsTheWidth()
{
    QFETCH(std::size_t, cores);
    QFETCH(double, radius);
    const CoreBarsData bars = fittedCoreBars(std::vector<double>(cores, 0.5), Theme::cpu, 260);
    QCOMPARE(bars.values.size(), cores);
    QTEST(bars.coresPerBar, "coresPerBar");
    QTEST(bars.spacing, "spacing");
    QTEST(bars.height, "height");
    QTEST(bars.labels.has_value(), "captions");
    QVERIFY(std::abs(bars.barCornerRadius - radius) < 0.001);
    if (bars.labels) {
        QCOMPARE(bars.labels->size(), static_cast<qsizetype>(cores));
        QCOMPARE(bars.labels->first(), u"0"_s);
        QCOMPARE(bars.labels->last(), QString::number(cores - 1));
    }
}

void TestCoreBars::fewBarsStayNarrow_data()
{
    QTest::addColumn<std::size_t>("cores");
    QTest::addColumn<int>("width");
    QTest::addColumn<double>("firstBar");
    QTest::addColumn<double>("barWidth");
    QTest::newRow("one core") << std::size_t(1) << 260 << 228.0 << 32.0;
    QTest::newRow("2 cores") << std::size_t(2) << 260 << 193.0 << 32.0;
    QTest::newRow("4 cores on a wide screen") << std::size_t(4) << 700 << 563.0 << 32.0;
    QTest::newRow("4 cores with little room") << std::size_t(4) << 109 << 0.0 << 25.0;
    QTest::newRow("8 cores fill the strip") << std::size_t(8) << 261 << 0.0 << 30.0;
}

/// On opaque bars and captions: where the first bar begins, that the last ends at the right edge.
void TestCoreBars::fewBarsStayNarrow()
{
    QFETCH(std::size_t, cores);
    QFETCH(int, width);
    QFETCH(double, firstBar);
    QFETCH(double, barWidth);
    const CoreBarsData data = fittedCoreBars(std::vector<double>(cores, 1), Theme::cpu, width);
    const QRectF strip = stripPlace(data, QRectF(0, 0, width, 40));
    const std::vector<QRectF> places = evenRow(cores, strip, data.spacing);
    QCOMPARE(places.front().left(), firstBar);
    QCOMPARE(places.front().width(), barWidth);
    QCOMPARE(places.back().right(), width);

    CoreBars bars;
    bars.resize(width, 52);
    bars.show(data);
    const QImage image = rendered(bars, 2);
    const auto hasInk = [&image](double from, double to) {
        for (double x = from; x < to; x += 0.5) {
            for (double y = 0; y < 52; y += 0.5) {
                if (pixelAt(image, x, y).alpha() > 0)
                    return true;
            }
        }
        return false;
    };
    QVERIFY(!hasInk(0, firstBar));
    QVERIFY(hasInk(firstBar, firstBar + 1));
    QVERIFY(hasInk(width - 1, width));
}

void TestCoreBars::neighboursShareABarByTheirMean()
{
    CoreBarsData data{.values = {0, 0.5, 2, 0, 0.3}, .coresPerBar = 2};
    QCOMPARE(barLoads(data), (std::vector<double>{0.25, 0.5, 0.3}));
    data.coresPerBar = 1;
    QCOMPARE(barLoads(data), (std::vector<double>{0, 0.5, 1, 0, 0.3}));
    data.coresPerBar = 8;
    QCOMPARE(barLoads(data), std::vector<double>{1.8 / 5});
    data.values.clear();
    QVERIFY(barLoads(data).empty());
}

void TestCoreBars::isAsHighAsBarsAndCaptions()
{
    CoreBars bars;
    bars.show({.values = {0.5}, .color = Theme::cpu, .height = 30});
    QCOMPARE(bars.sizeHint().height(), 30);
    bars.show({.values = {0.5}, .labels = QStringList{u"0"_s}, .color = Theme::cpu, .height = 40});
    QCOMPARE(bars.sizeHint().height(), 52);
    QCOMPARE(bars.minimumSizeHint(), bars.sizeHint());
    bars.show({.color = Theme::cpu, .height = 30});
    QCOMPARE(bars.sizeHint().height(), 30);
}

void TestCoreBars::paintsTrackAndFill_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("scale 1") << 1.0;
    QTest::newRow("scale 2") << 2.0;
}

void TestCoreBars::paintsTrackAndFill()
{
    QFETCH(double, scale);
    CoreBars bars;
    bars.resize(43, 30);
    // Two bars of 20 points: 0 to 20 and 23 to 43.
    bars.show({.values = {0.5, 0}, .color = Qt::white, .height = 30, .spacing = 3});
    const QImage image = rendered(bars, scale);

    const int track = qRound(255 * 0.1);
    QVERIFY(std::abs(pixelAt(image, 10, 14.5).alpha() - track) <= 1);
    QVERIFY(std::abs(pixelAt(image, 10, 0).alpha() - track) <= 1);
    // Fill over track: 0.95 at its top, 0.6 at its foot.
    const auto over = [](double opacity) { return 255 * (opacity + 0.1 * (1 - opacity)); };
    QVERIFY(std::abs(pixelAt(image, 10, 15).alpha() - over(0.95)) <= 5);
    QVERIFY(std::abs(pixelAt(image, 10, 22.5).alpha() - over(0.775)) <= 5);
    QVERIFY(std::abs(pixelAt(image, 10, 29.5).alpha() - over(0.6)) <= 5);
    // The idle core's sliver is 2 points high.
    QVERIFY(std::abs(pixelAt(image, 33, 27.5).alpha() - track) <= 1);
    QVERIFY(pixelAt(image, 33, 28).alpha() > 200);
    // Clear between the bars and at their round corners.
    QCOMPARE(pixelAt(image, 21.5, 29).alpha(), 0);
    QVERIFY(pixelAt(image, 0, 0).alpha() < track);
}

void TestCoreBars::captionsAreCentredBelowTheirBars()
{
    CoreBars bars;
    bars.resize(260, 52);
    bars.show(fittedCoreBars(std::vector<double>(16, 1.0), Theme::cpu, 260));
    QVERIFY(bars.shown().labels);
    const QImage image = rendered(bars, 2);
    const std::vector<QRectF> places = evenRow(16, QRectF(0, 42, 260, 10), 3);
    for (const QRectF &place : places) {
        double weight = 0;
        double moment = 0;
        for (double x = place.left(); x < place.right(); x += 0.5) {
            for (double y = place.top(); y < place.bottom(); y += 0.5) {
                const double ink = pixelAt(image, x, y).alphaF();
                weight += ink;
                moment += ink * (x - place.center().x());
            }
        }
        QVERIFY(weight > 0);
        QVERIFY(std::abs(moment / weight) < 1.5);
    }
    for (double x = 0; x < 260; x += 0.5)
        QCOMPARE(pixelAt(image, x, 41).alpha(), 0); // The gap below the bars.
}

void TestCoreBars::fewerCaptionsAreWider()
{
    CoreBars bars;
    bars.resize(100, 52);
    bars.show(
        {.values = {1, 1, 1, 1}, .labels = QStringList{u"0"_s}, .color = Theme::cpu, .height = 40});
    const QImage image = rendered(bars, 2);
    bool inTheMiddle = false;
    for (double y = 42; y < 52; y += 0.5)
        inTheMiddle |=
            pixelAt(image, 50 - 2, y).alpha() > 0 || pixelAt(image, 50 + 2, y).alpha() > 0;
    QVERIFY(inTheMiddle);
}

/// After each change the screen is the same as a complete repaint.
void TestCoreBars::repaintsEverythingThatChanged()
{
    CoreBars bars;
    bars.resize(180, 52);
    bars.QWidget::show();
    QImage screen = onScreen(bars);
    for (const std::vector<double> &values :
         {std::vector<double>{0.2, 0.9, 0.5}, {0.2, 0.1, 0.5}, {1, 1, 1, 1, 1}, {}}) {
        bars.show(fittedCoreBars(values, Theme::cpu, 180));
        const QImage next = onScreen(bars);
        QVERIFY(next != screen);
        screen = next;
        QCOMPARE(stalePixels(bars), QRect());
    }
}

void TestCoreBars::equalLoadsRepaintNothing()
{
    CoreBars bars;
    bars.resize(180, 52);
    bars.show(fittedCoreBars({0.2, 0.9}, Theme::cpu, 180));
    bars.QWidget::show();
    onScreen(bars);
    PaintWatch watch(bars);
    bars.show(fittedCoreBars({0.2, 0.9}, Theme::cpu, 180));
    onScreen(bars);
    QCOMPARE(watch.region(), QRegion());
    bars.show(fittedCoreBars({0.2, 0.8}, Theme::cpu, 180));
    onScreen(bars);
    QVERIFY(!watch.region().isEmpty());
}

void TestCoreBars::emptyPaintsNothing()
{
    CoreBars bars;
    bars.resize(100, 30);
    bars.show({.color = Theme::cpu, .height = 30});
    const QImage image = rendered(bars, 1);
    QImage blank(image.size(), image.format());
    blank.fill(Qt::transparent);
    QCOMPARE(image, blank);
}

void TestCoreBars::itsAccessibleValueIsTheLoads()
{
    CoreBars bars;
    bars.show({.values = {0.123, 1.4, -1}, .color = Theme::cpu});
    QCOMPARE(bars.accessibleValue(), u"0: 12%, 1: 100%, 2: 0%"_s);
    const QAccessibleInterface *seen = QAccessible::queryAccessibleInterface(&bars);
    QCOMPARE(seen->role(), QAccessible::Chart);
    QCOMPARE(seen->text(QAccessible::Value), u"0: 12%, 1: 100%, 2: 0%"_s);
    bars.show({.color = Theme::cpu});
    QCOMPARE(bars.accessibleValue(), QString());
}

void TestCoreBars::paintsManyCoresAndHostileNumbers()
{
    CoreBars bars;
    bars.resize(180, 52);
    std::vector<double> values(1'024, -std::numeric_limits<double>::infinity());
    values[3] = std::numeric_limits<double>::quiet_NaN();
    bars.show(fittedCoreBars(std::move(values), Theme::cpu, 180));
    QCOMPARE(rendered(bars, 1).size(), QSize(180, 52));
    bars.show(fittedCoreBars({0.5}, Theme::cpu, 0));
    QCOMPARE(rendered(bars, 1).size(), QSize(180, 52));
}

QTEST_MAIN(TestCoreBars)
#include "tst_CoreBars.moc"
