#include "tray/TrayPicture.h"

#include "controls/Logo.h"
#include "ui/Theme.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

constexpr LabelPosition leftmost{0, 3};
constexpr LabelPosition middle{1, 3};
constexpr LabelPosition rightmost{2, 3};

LabelNumber number(const QString &text)
{
    return {.text = text, .color = Theme::memory};
}

/// The first and last column between two rows that contain the number's colour, all in units of a
/// 22nd of the side.
QPair<double, double> inkBetween(const QImage &picture, double top, double bottom)
{
    const double scale = picture.width() / 22.0;
    int first = picture.width();
    int last = -1;
    for (int y = qRound(top * scale); y < qRound(bottom * scale); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, y).green() < 120)
                continue;
            first = qMin(first, x);
            last = qMax(last, x);
        }
    }
    return {first / scale, (last + 1) / scale};
}

LabelNumbers numbers(const QString &memory, const QString &gpu, const QString &power)
{
    return {{.kind = LabelKind::memory, .text = memory, .color = Theme::memory},
            {.kind = LabelKind::gpu, .text = gpu, .color = Theme::gpu},
            {.kind = LabelKind::power, .text = power, .color = Theme::power}};
}

/// First and last column with pixels of that colour; an empty range for none.
QPair<int, int> columnsOf(const QImage &picture, const QColor &color)
{
    QPair<int, int> columns{picture.width(), -1};
    for (int x = 0; x < picture.width(); ++x) {
        for (int y = 0; y < picture.height(); ++y) {
            if (picture.pixelColor(x, y).rgb() != color.rgb())
                continue;
            columns.first = qMin(columns.first, x);
            columns.second = x;
        }
    }
    return columns;
}

} // namespace

class TestTrayPicture : public QObject {
    Q_OBJECT

private slots:
    void hasTheSizeAskedFor_data();
    void hasTheSizeAskedFor();
    void hasADarkPlateWithRoundCorners();
    void marksItsPosition_data();
    void marksItsPosition();
    void keepsEveryNumberInside_data();
    void keepsEveryNumberInside();
    void leavesOutTheUnitOfThreeDigits_data();
    void leavesOutTheUnitOfThreeDigits();
    void iconHasAllSizes();
    void widePictureShowsAllInOrder_data();
    void widePictureShowsAllInOrder();
    void widePictureKeepsItsWidthUpToTwoDigits();
    void widePictureGrowsWithTheCountOfNumbers();
    void offersLargePicturesToDenseScreens_data();
    void offersLargePicturesToDenseScreens();
    void signPictureFillsItsSquare();
};

void TestTrayPicture::hasTheSizeAskedFor_data()
{
    QTest::addColumn<int>("pixels");
    for (const int pixels : {16, 22, 24, 33, 44, 64})
        QTest::addRow("%d pixels", pixels) << pixels;
}

void TestTrayPicture::hasTheSizeAskedFor()
{
    QFETCH(int, pixels);
    const QImage picture = trayPicture(number(u"71"_s), leftmost, pixels);
    QCOMPARE(picture.size(), QSize(pixels, pixels));
    const auto [first, last] = inkBetween(picture, 3, 15);
    QVERIFY2(last - first > 8, "the number is too small to read");
}

void TestTrayPicture::hasADarkPlateWithRoundCorners()
{
    const QImage picture = trayPicture(number(QString()), leftmost, 44);
    QCOMPARE(picture.pixelColor(0, 0).alpha(), 0);
    QCOMPARE(picture.pixelColor(43, 43).alpha(), 0);
    const QColor plate = picture.pixelColor(22, 8);
    QCOMPARE(plate.alpha(), Theme::plate.alpha());
    QVERIFY(plate.lightness() < 40);
}

void TestTrayPicture::marksItsPosition_data()
{
    QTest::addColumn<LabelPosition>("position");
    QTest::addColumn<double>("left");
    QTest::addColumn<double>("right");
    QTest::newRow("the first of three") << leftmost << 4.0 << 8.0;
    QTest::newRow("the second of three") << middle << 9.0 << 13.0;
    QTest::newRow("the last of three") << rightmost << 14.0 << 18.0;
    QTest::newRow("the first of two") << LabelPosition{0, 2} << 4.0 << 8.0;
    QTest::newRow("the last of two") << LabelPosition{1, 2} << 14.0 << 18.0;
    QTest::newRow("the first of four") << LabelPosition{0, 4} << 4.0 << 7.0;
    QTest::newRow("the second of four") << LabelPosition{1, 4} << 7.67 << 10.67;
    QTest::newRow("the third of four") << LabelPosition{2, 4} << 11.33 << 14.33;
    QTest::newRow("the last of four") << LabelPosition{3, 4} << 15.0 << 18.0;
    QTest::newRow("the only one") << LabelPosition{0, 1} << 4.0 << 8.0;
}

void TestTrayPicture::marksItsPosition()
{
    QFETCH(LabelPosition, position);
    QFETCH(double, left);
    QFETCH(double, right);
    const auto [first, last] = inkBetween(trayPicture(number(u"71"_s), position, 88), 17.25, 18.75);
    QVERIFY(qAbs(first - left) <= 0.5);
    QVERIFY(qAbs(last - right) <= 0.5);
}

void TestTrayPicture::keepsEveryNumberInside_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("one digit") << u"1"_s;
    QTest::newRow("a full hundred") << u"100"_s;
    QTest::newRow("fifty watts") << u"50W"_s;
    QTest::newRow("four hundred watts") << u"400W"_s;
    QTest::newRow("a sleeping card") << u"zz"_s;
    QTest::newRow("at least a third") << u"≥33"_s;
    QTest::newRow("a text longer than any machine's") << u"1000000000000000"_s;
}

void TestTrayPicture::keepsEveryNumberInside()
{
    QFETCH(QString, text);
    for (const int pixels : {16, 22, 44, 64}) {
        const auto [first, last] = inkBetween(trayPicture(number(text), leftmost, pixels), 2, 16);
        QVERIFY(first >= 0.5);
        QVERIFY(last <= 21.5);
    }
}

void TestTrayPicture::leavesOutTheUnitOfThreeDigits_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("seen");
    QTest::newRow("100 W") << u"100W"_s << u"100"_s;
    QTest::newRow("1,250 W") << u"1250W"_s << u"1250"_s;
}

void TestTrayPicture::leavesOutTheUnitOfThreeDigits()
{
    QFETCH(QString, text);
    QFETCH(QString, seen);
    for (const int pixels : {22, 44})
        QCOMPARE(trayPicture(number(text), rightmost, pixels),
                 trayPicture(number(seen), rightmost, pixels));
    QVERIFY(trayPicture(number(u"99W"_s), rightmost, 44)
            != trayPicture(number(u"99"_s), rightmost, 44));
}

void TestTrayPicture::iconHasAllSizes()
{
    const QIcon icon = trayIcon(number(u"71"_s), leftmost);
    for (const int pixels : trayPictureSizes())
        QVERIFY(icon.availableSizes().contains(QSize(pixels, pixels)));
}

void TestTrayPicture::widePictureShowsAllInOrder_data()
{
    QTest::addColumn<LabelNumbers>("shown");
    QTest::newRow("typical values") << numbers(u"63"_s, u"41"_s, u"12W"_s);
    QTest::newRow("the lowest values") << numbers(u"0"_s, u"0"_s, u"0W"_s);
    QTest::newRow("the highest values") << numbers(u"100"_s, u"100"_s, u"999W"_s);
}

void TestTrayPicture::widePictureShowsAllInOrder()
{
    QFETCH(LabelNumbers, shown);
    for (const int pixels : trayPictureSizes(2)) {
        if (pixels < 32)
            continue; // Strokes too thin for a pixel of the pure colour.
        const QImage picture = widePicture(shown, pixels);
        QCOMPARE(picture.height(), pixels);
        const auto memory = columnsOf(picture, Theme::memory);
        const auto gpu = columnsOf(picture, Theme::gpu);
        const auto power = columnsOf(picture, Theme::power);
        QVERIFY(memory.first > 0 && memory.first <= memory.second);
        QVERIFY(memory.second < gpu.first && gpu.first <= gpu.second);
        QVERIFY(gpu.second < power.first && power.first <= power.second);
        QVERIFY(power.second < picture.width() - 1);
    }
}

void TestTrayPicture::widePictureKeepsItsWidthUpToTwoDigits()
{
    const int width = widePicture(numbers(u"0"_s, u"1"_s, u"2W"_s), 22).width();
    QCOMPARE(widePicture(numbers(u"88"_s, u"41"_s, u"12W"_s), 22).width(), width);
    QVERIFY(widePicture(numbers(u"100"_s, u"41"_s, u"12W"_s), 22).width() > width);
}

void TestTrayPicture::widePictureGrowsWithTheCountOfNumbers()
{
    LabelNumbers shown = numbers(u"19"_s, u"97"_s, u"31W"_s);
    const int three = widePicture(shown, 44).width();
    shown.insert(shown.begin() + 1,
                 {.kind = LabelKind::vram, .text = u"90"_s, .color = Theme::gpu});
    const int four = widePicture(shown, 44).width();
    QVERIFY(four > three);
    QVERIFY(widePicture({shown[0], shown[2]}, 44).width() < three);
    shown[1].text = u"zz"_s;
    QCOMPARE(widePicture(shown, 44).width(), four);
}

void TestTrayPicture::offersLargePicturesToDenseScreens_data()
{
    QTest::addColumn<double>("ratio");
    QTest::addColumn<QList<int>>("expected");
    QTest::newRow("a pixel a point") << 1.0 << QList<int>{16, 22, 24, 32, 48};
    QTest::newRow("a fraction more") << 1.25 << QList<int>{16, 22, 24, 32, 44, 48, 64};
    QTest::newRow("two pixels a point") << 2.0 << QList<int>{16, 22, 24, 32, 44, 48, 64};
}

void TestTrayPicture::offersLargePicturesToDenseScreens()
{
    QFETCH(double, ratio);
    const std::span<const int> sizes = trayPictureSizes(ratio);
    QTEST(QList<int>(sizes.begin(), sizes.end()), "expected");
}

void TestTrayPicture::signPictureFillsItsSquare()
{
    const QImage picture = signPicture(44);
    QCOMPARE(picture.size(), QSize(44, 44));
    QCOMPARE(picture.pixelColor(0, 0).alpha(), 0);
    QVERIFY(picture.pixelColor(22, 2).alpha() > 100);
    bool hasGlyph = false;
    for (int y = 0; y < 44; ++y)
        hasGlyph = hasGlyph || picture.pixelColor(22, y).lightness() > 240;
    QVERIFY(hasGlyph);
}

QTEST_MAIN(TestTrayPicture)
#include "tst_TrayPicture.moc"
