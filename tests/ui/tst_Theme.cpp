#include "ui/Theme.h"

#include <QFontMetricsF>
#include <QTest>

using namespace corvane;

namespace {

/// Components as a designer gives them, in hundredths.
QList<int> hundredths(const QColor &color)
{
    return {qRound(color.redF() * 100), qRound(color.greenF() * 100), qRound(color.blueF() * 100),
            qRound(color.alphaF() * 100)};
}

} // namespace

class TestTheme : public QObject {
    Q_OBJECT

private slots:
    void hasThePalette_data();
    void hasThePalette();
    void tertiaryTextIsFadedSecondaryText();
    void opacityIsOnTopOfTheColoursOwn_data();
    void opacityIsOnTopOfTheColoursOwn();
    void windowsFadeFromCornerToCorner();
    void fontsHaveSizeAndWeight();
};

void TestTheme::hasThePalette_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<QList<int>>("expected");
    QTest::newRow("CPU is light blue") << Theme::cpu << QList<int>{30, 65, 100, 100};
    QTest::newRow("GPU is orange") << Theme::gpu << QList<int>{100, 58, 16, 100};
    QTest::newRow("the Neural Engine is violet") << Theme::ane << QList<int>{72, 42, 100, 100};
    QTest::newRow("power is yellow") << Theme::power << QList<int>{100, 85, 30, 100};
    QTest::newRow("memory is green") << Theme::memory << QList<int>{20, 80, 55, 100};
}

void TestTheme::hasThePalette()
{
    QFETCH(QColor, color);
    QCOMPARE(color.spec(), QColor::Rgb);
    QTEST(hundredths(color), "expected");
}

void TestTheme::tertiaryTextIsFadedSecondaryText()
{
    QCOMPARE(Theme::textTertiary.rgb(), Theme::textSecondary.rgb());
    QCOMPARE(qRound(Theme::textTertiary.alphaF() * 1000),
             qRound(Theme::textSecondary.alphaF() * 600));
}

void TestTheme::opacityIsOnTopOfTheColoursOwn_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<double>("opacity");
    QTest::addColumn<int>("expected"); // In hundredths.
    const QColor half = QColor::fromRgbF(1, 0, 0, 0.5F);
    QTest::newRow("an opaque colour") << QColor(Qt::red) << 0.7 << 70;
    QTest::newRow("a colour that is half there") << half << 0.6 << 30;
    QTest::newRow("unchanged") << half << 1.0 << 50;
    QTest::newRow("gone") << half << 0.0 << 0;
}

void TestTheme::opacityIsOnTopOfTheColoursOwn()
{
    QFETCH(QColor, color);
    QFETCH(double, opacity);
    const QColor faded = Theme::withOpacity(color, opacity);
    QCOMPARE(faded.rgb(), color.rgb());
    QTEST(hundredths(faded).last(), "expected");
}

void TestTheme::windowsFadeFromCornerToCorner()
{
    const QLinearGradient gradient = Theme::windowGradient(QSizeF(300, 200));
    QCOMPARE(gradient.start(), QPointF(0, 0));
    QCOMPARE(gradient.finalStop(), QPointF(300, 200));
}

void TestTheme::fontsHaveSizeAndWeight()
{
    const QFont font = Theme::systemFont(13, QFont::DemiBold);
    QCOMPARE(font.pixelSize(), 13);
    QCOMPARE(font.weight(), QFont::DemiBold);
    QCOMPARE(Theme::systemFont(10).weight(), QFont::Normal);
    const QFontMetricsF monospaced(Theme::monospacedFont(11));
    QCOMPARE(monospaced.horizontalAdvance(u'i'), monospaced.horizontalAdvance(u'W'));
}

QTEST_MAIN(TestTheme)
#include "tst_Theme.moc"
