#include "controls/WindowBackground.h"
#include "support/Rendering.h"
#include "ui/Theme.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;

class TestWindowBackground : public QObject {
    Q_OBJECT

private slots:
    void runsFromCornerToCorner();
    void isDitheredByOneStep();
    void isTheSameInEveryPart();
    void matchesTheGradient();
};

void TestWindowBackground::runsFromCornerToCorner()
{
    const QImage image = windowBackground({920, 760}, {0, 0, 920, 760});
    const QGradientStops stops = Theme::windowGradient({920, 760}).stops();
    QVERIFY(isClose(image.pixelColor(0, 0), stops.first().second, 1));
    QVERIFY(isClose(image.pixelColor(919, 759), stops.last().second, 1));
}

void TestWindowBackground::isDitheredByOneStep()
{
    // Across 8 × 8 pixels the colour hardly changes: there are at most two values of a channel.
    const QImage image = windowBackground({1280, 900}, {400, 300, 8, 8});
    int least = 255;
    int most = 0;
    double sum = 0;
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 8; ++x) {
            const int blue = image.pixelColor(x, y).blue();
            least = std::min(least, blue);
            most = std::max(most, blue);
            sum += blue;
        }
    }
    QCOMPARE(most - least, 1);
    // Their mean is the exact colour: blue runs from 0.09 to 0.06.
    const double position = (403.5 * 1280 + 303.5 * 900) / (1280.0 * 1280 + 900.0 * 900);
    QVERIFY(qAbs(sum / 64 - 255 * (0.09 - 0.03 * position)) < 0.05);
}

void TestWindowBackground::isTheSameInEveryPart()
{
    const QImage whole = windowBackground({640, 480}, {0, 0, 640, 480});
    const QRect part(131, 77, 201, 99);
    const QImage again = windowBackground({640, 480}, part);
    int different = 0;
    for (int y = 0; y < part.height(); ++y) {
        for (int x = 0; x < part.width(); ++x)
            different += again.pixel(x, y) != whole.pixel(part.topLeft() + QPoint(x, y));
    }
    // Fixed-point steps may round a few pixels the other way.
    QVERIFY2(different < part.width() * part.height() / 200,
             qPrintable(QString::number(different)));
}

void TestWindowBackground::matchesTheGradient()
{
    QImage gradient(640, 480, QImage::Format_RGB32);
    QPainter painter(&gradient);
    painter.fillRect(gradient.rect(), Theme::windowGradient(gradient.size()));
    painter.end();
    const QImage image = windowBackground({640, 480}, gradient.rect());
    for (int i = 0; i < 480; i += 7)
        QVERIFY(isClose(image.pixelColor(i, i), gradient.pixelColor(i, i), 1));
}

QTEST_APPLESS_MAIN(TestWindowBackground)
#include "tst_WindowBackground.moc"
