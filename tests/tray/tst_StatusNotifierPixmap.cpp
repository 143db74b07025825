#include "tray/StatusNotifierPixmap_linux.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestStatusNotifierPixmap : public QObject {
    Q_OBJECT

private slots:
    void pixelsAreAlphaRedGreenBlueInThisOrder();
    void coloursAreNotPremultiplied();
    void rowsHaveNoPadding();
    void anEmptyPictureHasNoBytes();
};

void TestStatusNotifierPixmap::pixelsAreAlphaRedGreenBlueInThisOrder()
{
    QImage picture(1, 1, QImage::Format_ARGB32);
    picture.setPixelColor(0, 0, QColor(1, 2, 3, 4));
    const StatusNotifierPixmap expected{.width = 1, .height = 1, .bytes = "\x04\x01\x02\x03"_ba};
    QCOMPARE(StatusNotifierPixmap::from(picture), expected);
}

void TestStatusNotifierPixmap::coloursAreNotPremultiplied()
{
    QImage picture(1, 1, QImage::Format_ARGB32_Premultiplied);
    picture.fill(QColor(255, 0, 255, 51));
    QCOMPARE(StatusNotifierPixmap::from(picture).bytes.toHex(), "33ff00ff"_ba);
}

void TestStatusNotifierPixmap::rowsHaveNoPadding()
{
    QImage picture(3, 2, QImage::Format_ARGB32);
    picture.fill(Qt::black);
    picture.setPixelColor(0, 1, Qt::white);
    const StatusNotifierPixmap pixmap = StatusNotifierPixmap::from(picture);
    QCOMPARE(pixmap.width, 3);
    QCOMPARE(pixmap.height, 2);
    QCOMPARE(pixmap.bytes.toHex(), QByteArray("ff000000ff000000ff000000ffffffffff000000ff000000"));
}

void TestStatusNotifierPixmap::anEmptyPictureHasNoBytes()
{
    QCOMPARE(StatusNotifierPixmap::from(QImage()), StatusNotifierPixmap());
}

QTEST_MAIN(TestStatusNotifierPixmap)
#include "tst_StatusNotifierPixmap.moc"
