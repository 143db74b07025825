#include "ui/ContentArea.h"

#include "support/Rendering.h"

#include <QResizeEvent>
#include <QTest>
#include <QWidget>

using namespace corvane;
using namespace corvane::test;

namespace {

/// Fills its content area, and counts its resize events.
class Filled : public QWidget {
public:
    using QWidget::QWidget;
    int resizes = 0;

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter(this).fillRect(contentArea(*this), Qt::white);
    }
    void resizeEvent(QResizeEvent *) override { ++resizes; }
};

} // namespace

class TestContentArea : public QObject {
    Q_OBJECT

private slots:
    void coversThePointsOfTheContent_data();
    void coversThePointsOfTheContent();
    void paintsBetweenPoints();
    void isTheWholeWidgetAfterAnotherResizing();
    void tellsTheWidgetOfAnotherArea();
    void snapsEdges_data();
    void snapsEdges();
    void keepsCommonEdges();
};

void TestContentArea::coversThePointsOfTheContent_data()
{
    QTest::addColumn<QRectF>("content");
    QTest::addColumn<QRect>("widget");
    QTest::addColumn<QRectF>("area");
    QTest::newRow("whole points") << QRectF(16, 340, 407, 226) << QRect(16, 340, 407, 226)
                                  << QRectF(0, 0, 407, 226);
    QTest::newRow("half a point at the left")
        << QRectF(436.5, 340, 407, 226) << QRect(436, 340, 408, 226) << QRectF(0.5, 0, 407, 226);
    QTest::newRow("half a point at the right")
        << QRectF(16, 340, 406.5, 226) << QRect(16, 340, 407, 226) << QRectF(0, 0, 406.5, 226);
    QTest::newRow("fractions on all sides")
        << QRectF(0.25, 0.5, 9.25, 10.25) << QRect(0, 0, 10, 11) << QRectF(0.25, 0.5, 9.25, 10.25);
    QTest::newRow("left of the parent")
        << QRectF(-3.5, -3.5, 10, 10) << QRect(-4, -4, 11, 11) << QRectF(0.5, 0.5, 10, 10);
    QTest::newRow("no width") << QRectF(128, 46, 0, 52) << QRect(128, 46, 0, 52)
                              << QRectF(0, 0, 0, 52);
    QTest::newRow("a rounding error covers no point")
        << QRectF(QPointF(16, 16), QPointF(20 + 1e-12, 20 - 1e-12)) << QRect(16, 16, 4, 4)
        << QRectF(0, 0, 4, 4);
}

void TestContentArea::coversThePointsOfTheContent()
{
    QFETCH(QRectF, content);
    QWidget widget;
    placeContent(widget, content);
    QTEST(widget.geometry(), "widget");
    QTEST(contentArea(widget), "area");
}

void TestContentArea::paintsBetweenPoints()
{
    Filled widget;
    placeContent(widget, QRectF(10.5, 10, 4, 4));
    widget.setAttribute(Qt::WA_NoSystemBackground);
    const QImage image = rendered(widget, 2);
    QCOMPARE(image.width(), 10);
    for (int x = 0; x < image.width(); ++x)
        QCOMPARE(image.pixelColor(x, 4) == Qt::white, x >= 1 && x < 9);
}

void TestContentArea::isTheWholeWidgetAfterAnotherResizing()
{
    QWidget widget;
    placeContent(widget, QRectF(10.5, 10, 4, 4));
    widget.resize(30, 20);
    QCOMPARE(contentArea(widget), QRectF(0, 0, 30, 20));
}

void TestContentArea::tellsTheWidgetOfAnotherArea()
{
    Filled widget;
    widget.show();
    placeContent(widget, QRectF(10, 10, 100, 4));
    const int before = widget.resizes;
    placeContent(widget, QRectF(10, 10, 99.5, 4));
    QCOMPARE(widget.resizes, before + 1);
    placeContent(widget, QRectF(10, 10, 99.5, 4));
    QCOMPARE(widget.resizes, before + 1);
}

void TestContentArea::snapsEdges_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<QRectF>("snapped");
    QTest::newRow("scale 1") << 1.0 << QRectF(437, 340, 406, 226);
    QTest::newRow("scale 1.25") << 1.25 << QRectF(436.8, 340, 406.4, 226.4);
    QTest::newRow("scale 1.5") << 1.5 << QRectF(QPointF(655 / 1.5, 340), QPointF(1265 / 1.5, 566));
    QTest::newRow("scale 2") << 2.0 << QRectF(436.5, 340, 407, 226);
    QTest::newRow("scale 3") << 3.0 << QRectF(QPointF(1310 / 3.0, 340), QPointF(2530 / 3.0, 566));
}

void TestContentArea::snapsEdges()
{
    QFETCH(double, scale);
    const QRectF third(16 + 1262 / 3.0, 340, 1220 / 3.0, 226);
    QTEST(edgesOnPixels(third, scale), "snapped");
}

void TestContentArea::keepsCommonEdges()
{
    for (const double scale : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
        const QRectF left = edgesOnPixels({10, 0, 100.3, 9}, scale);
        const QRectF right = edgesOnPixels({110.3, 0, 50.3, 9}, scale);
        QCOMPARE(left.right(), right.left());
    }
}

QTEST_MAIN(TestContentArea)
#include "tst_ContentArea.moc"
