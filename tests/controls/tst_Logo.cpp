#include "controls/Logo.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <algorithm>

using namespace corvane;

class TestLogo : public QObject {
    Q_OBJECT

private slots:
    void fillsItsSquareAtEverySize_data();
    void fillsItsSquareAtEverySize();
};

void TestLogo::fillsItsSquareAtEverySize_data()
{
    QTest::addColumn<int>("side");
    QTest::addColumn<LogoSize>("size");
    for (const int side : {16, 28, 64})
        QTest::addRow("%d points", side) << side << LogoSize::small;
    QTest::addRow("large") << 72 << LogoSize::large;
}

void TestLogo::fillsItsSquareAtEverySize()
{
    QFETCH(int, side);
    QFETCH(LogoSize, size);
    QImage picture(side + 4, side + 4, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    paintLogo(painter, QRectF(2, 2, side, side), size);
    painter.end();

    const auto alphaAt = [&](int x, int y) { return picture.pixelColor(x, y).alpha(); };
    QCOMPARE(alphaAt(1, side / 2), 0);
    QCOMPARE(alphaAt(2, 2), 0); // Its corners are round.
    QVERIFY(alphaAt(2 + side / 2, 3) > 150);
    // Blue where it begins, orange where it ends.
    QVERIFY(picture.pixelColor(3, 2 + side / 3).blue() > picture.pixelColor(3, 2 + side / 3).red());
    const QColor end = picture.pixelColor(side, side - side / 3);
    QVERIFY(end.red() > end.blue());
    int white = 0;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const QColor color = picture.pixelColor(x, y);
            white += std::min({color.red(), color.green(), color.blue()}) > 200 ? 1 : 0;
        }
    }
    QVERIFY2(white > 0, "no heartbeat");
}

QTEST_MAIN(TestLogo)
#include "tst_Logo.moc"
