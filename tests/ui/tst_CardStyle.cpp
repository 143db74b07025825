#include "support/Rendering.h"
#include "ui/CardStyle.h"
#include "ui/Theme.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;

class TestCardStyle : public QObject {
    Q_OBJECT

private slots:
    void cornersStayInsideAndTouchTheSides_data();
    void cornersStayInsideAndTouchTheSides();
    void fillsAndStrokesInside_data();
    void fillsAndStrokesInside();
};

void TestCardStyle::cornersStayInsideAndTouchTheSides_data()
{
    QTest::addColumn<QRectF>("rect");
    QTest::addColumn<double>("radius");
    QTest::newRow("a card") << QRectF(3, 4, 400, 200) << 14.0;
    QTest::newRow("no corner") << QRectF(0, 0, 40, 20) << 0.0;
    QTest::newRow("smaller than its corners") << QRectF(0, 0, 10, 6) << 14.0;
}

void TestCardStyle::cornersStayInsideAndTouchTheSides()
{
    QFETCH(QRectF, rect);
    QFETCH(double, radius);
    const QPainterPath path = CardStyle::continuousCorners(rect, radius);
    QCOMPARE(path.boundingRect(), rect);
    QVERIFY(path.contains(rect.center()));
    if (radius == 0)
        return;
    QVERIFY(!path.contains(rect.topLeft() + QPointF(0.4, 0.4)));
    QVERIFY(!path.contains(rect.bottomRight() - QPointF(0.4, 0.4)));
    // The middle of the corner lies where the quarter circle's does, 0.293 radii from both sides.
    const double middle = std::min(radius, rect.height() / 2 / 1.52866) * 0.2929;
    QVERIFY(path.contains(rect.topLeft() + QPointF(middle + 0.1, middle + 0.1)));
    QVERIFY(!path.contains(rect.topLeft() + QPointF(middle - 0.1, middle - 0.1)));
}

void TestCardStyle::fillsAndStrokesInside_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("scale 1") << 1.0;
    QTest::newRow("scale 2") << 2.0;
}

void TestCardStyle::fillsAndStrokesInside()
{
    QFETCH(double, scale);
    QImage image(QSize(100, 80) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::black);
    QPainter painter(&image);
    CardStyle::paint(painter, QRectF(10, 10, 80, 60), QRect(0, 0, 100, 80));
    painter.end();
    const QColor fill(11, 11, 11); // White at 0.045.
    QVERIFY(isClose(pixelAt(image, 50, 40), fill, 1));
    QVERIFY(isClose(pixelAt(image, 50, 11.6), fill, 1));
    const QColor edge(26, 26, 26); // White at 0.06 over it.
    QVERIFY(isClose(pixelAt(image, 50, 10.2), edge, 1));
    QVERIFY(isClose(pixelAt(image, 10.2, 40), edge, 1));
    QVERIFY(isClose(pixelAt(image, 89.8, 40), edge, 1));
    QCOMPARE(pixelAt(image, 50, 9.5), QColor(Qt::black));
    QCOMPARE(pixelAt(image, 10.5, 10.5), QColor(Qt::black));
}

QTEST_MAIN(TestCardStyle)
#include "tst_CardStyle.moc"
