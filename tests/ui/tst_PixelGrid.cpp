#include "ui/PixelGrid.h"

#include <QImage>
#include <QPainter>
#include <QTest>

using namespace corvane;

class TestPixelGrid : public QObject {
    Q_OBJECT

private slots:
    void aHairlineCoversWholePixels_data();
    void aHairlineCoversWholePixels();
    void snapsThroughTheTransformation();
    void keepsAtLeastOnePixel();
};

void TestPixelGrid::aHairlineCoversWholePixels_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<double>("top");
    QTest::addColumn<QList<int>>("rows");
    QTest::newRow("a whole point at scale 1") << 1.0 << 3.0 << QList<int>{3};
    QTest::newRow("half a point at scale 1") << 1.0 << 3.5 << QList<int>{4};
    QTest::newRow("two pixels at scale 2") << 2.0 << 3.5 << QList<int>{7, 8};
    QTest::newRow("between pixels at scale 2") << 2.0 << 3.3 << QList<int>{7, 8};
    QTest::newRow("one pixel at scale 1.25") << 1.25 << 3.0 << QList<int>{4};
    QTest::newRow("two pixels at scale 1.5") << 1.5 << 3.0 << QList<int>{5, 6};
}

void TestPixelGrid::aHairlineCoversWholePixels()
{
    QFETCH(double, scale);
    QFETCH(double, top);
    QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    fillHairline(painter, QRectF(0, top, 5, 1), Qt::white);
    painter.end();

    QList<int> rows;
    for (int y = 0; y < image.height(); ++y) {
        const int alpha = image.pixelColor(2, y).alpha();
        QVERIFY(alpha == 0 || alpha == 255);
        if (alpha == 255)
            rows.append(y);
    }
    QTEST(rows, "rows");
}

void TestPixelGrid::snapsThroughTheTransformation()
{
    QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.translate(0.4, 0.4);
    QCOMPARE(snappedToPixels(painter, QPointF(1, 2.2)) + QPointF(0.4, 0.4), QPointF(1, 3));
    QCOMPARE(snappedToPixels(painter, QRectF(1, 1, 2.6, 1)).translated(0.4, 0.4),
             QRectF(1, 1, 3, 1));
}

void TestPixelGrid::keepsAtLeastOnePixel()
{
    QImage image(20, 20, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    QCOMPARE(snappedToPixels(painter, QRectF(3, 3, 0.2, 0.1)), QRectF(3, 3, 1, 1));
}

QTEST_MAIN(TestPixelGrid)
#include "tst_PixelGrid.moc"
