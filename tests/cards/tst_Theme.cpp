#include "cards/Theme.h"

#include <QTest>

using namespace corvane;

class TestTheme : public QObject {
    Q_OBJECT

private slots:
    void hasItsColors_data();
    void hasItsColors();
    void namesColorsOnce();
    void fadesWhatIsFaded();
    void runsFromCornerToCorner();
    void sizesFontsInPixels();
};

void TestTheme::hasItsColors_data()
{
    QTest::addColumn<QColor>("color");
    QTest::addColumn<QColor>("expected");
    const auto rgb = [](float red, float green, float blue, float opacity = 1) {
        return QColor::fromRgbF(red, green, blue, opacity);
    };
    QTest::newRow("CPU is light blue") << Theme::cpu() << rgb(0.3F, 0.65F, 1.0F);
    QTest::newRow("GPU is orange") << Theme::gpu() << rgb(1.0F, 0.58F, 0.16F);
    QTest::newRow("Neural Engine is violet") << Theme::ane() << rgb(0.72F, 0.42F, 1.0F);
    QTest::newRow("power is yellow") << Theme::power() << rgb(1.0F, 0.85F, 0.3F);
    QTest::newRow("memory is green") << Theme::memory() << rgb(0.2F, 0.8F, 0.55F);
    QTest::newRow("card stroke") << Theme::cardStroke() << rgb(1, 1, 1, 0.06F);
    QTest::newRow("track of a bar") << Theme::track() << rgb(1, 1, 1, 0.05F);
    QTest::newRow("tag") << Theme::tag() << rgb(1, 1, 1, 0.06F);
    QTest::newRow("grid of a chart") << Theme::chartGrid() << rgb(1, 1, 1, 0.05F);
    QTest::newRow("cursor of a chart") << Theme::chartCursor() << rgb(1, 1, 1, 0.35F);
    QTest::newRow("border of a pill") << Theme::pillStroke() << rgb(1, 1, 1, 0.1F);
    QTest::newRow("critical is red") << Theme::critical() << QColor(255, 69, 58);
}

void TestTheme::hasItsColors()
{
    QFETCH(QColor, color);
    QTEST(color, "expected");
}

void TestTheme::namesColorsOnce()
{
    QCOMPARE(&Theme::cpu(), &Theme::cpu());
    QCOMPARE(&Theme::textTertiary(), &Theme::textTertiary());
}

void TestTheme::fadesWhatIsFaded()
{
    QCOMPARE(Theme::textTertiary(), Theme::withOpacity(Theme::textSecondary(), 0.6));
    QCOMPARE(Theme::timeLabel(), Theme::withOpacity(Theme::textSecondary(), 0.5));
    QVERIFY(qAbs(Theme::withOpacity(QColor(255, 0, 0, 128), 0.5).alphaF() - 0.25F) < 0.01F);
}

void TestTheme::runsFromCornerToCorner()
{
    const QLinearGradient gradient = Theme::windowGradient({1280, 900});
    QCOMPARE(gradient.start(), QPointF(0, 0));
    QCOMPARE(gradient.finalStop(), QPointF(1280, 900));
    const QGradientStops stops = gradient.stops();
    QCOMPARE(stops.size(), 2);
    QCOMPARE(stops[0], QGradientStop(0, QColor::fromRgbF(0.05F, 0.06F, 0.09F)));
    QCOMPARE(stops[1], QGradientStop(1, QColor::fromRgbF(0.03F, 0.04F, 0.06F)));
}

void TestTheme::sizesFontsInPixels()
{
    QCOMPARE(Theme::systemFont(11).pixelSize(), 11);
    QCOMPARE(Theme::systemFont(13, QFont::DemiBold).weight(), QFont::DemiBold);
    QCOMPARE(Theme::monospacedFont(10).pixelSize(), 10);
}

QTEST_MAIN(TestTheme)
#include "tst_Theme.moc"
