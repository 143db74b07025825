#include "tray/TrayPicture.h"

#include "controls/Logo.h"
#include "ui/Theme.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

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
    return {{{.text = memory, .color = Theme::memory},
             {.text = gpu, .color = Theme::gpu},
             {.text = power, .color = Theme::power}}};
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
    void widePictureShowsAllThreeInOrder_data();
    void widePictureShowsAllThreeInOrder();
    void widePictureKeepsItsWidthUpToTwoDigits();
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
    const QImage picture = trayPicture(number(u"71"_s), LabelPosition::left, pixels);
    QCOMPARE(picture.size(), QSize(pixels, pixels));
    const auto [first, last] = inkBetween(picture, 3, 15);
    QVERIFY2(last - first > 8, "the number is too small to read");
}

void TestTrayPicture::hasADarkPlateWithRoundCorners()
{
    const QImage picture = trayPicture(number(QString()), LabelPosition::left, 44);
    QCOMPARE(picture.pixelColor(0, 0).alpha(), 0);
    QCOMPARE(picture.pixelColor(43, 43).alpha(), 0);
    const QColor middle = picture.pixelColor(22, 8);
    QCOMPARE(middle.alpha(), Theme::plate.alpha());
    QVERIFY(middle.lightness() < 40);
}

void TestTrayPicture::marksItsPosition_data()
{
    QTest::addColumn<LabelPosition>("position");
    QTest::addColumn<double>("left");
    QTest::newRow("memory on the left") << LabelPosition::left << 4.0;
    QTest::newRow("GPU in the middle") << LabelPosition::middle << 9.0;
    QTest::newRow("power on the right") << LabelPosition::right << 14.0;
}

void TestTrayPicture::marksItsPosition()
{
    QFETCH(LabelPosition, position);
    QFETCH(double, left);
    const auto [first, last] = inkBetween(trayPicture(number(u"71"_s), position, 88), 17.25, 18.75);
    QVERIFY(qAbs(first - left) <= 0.5);
    QVERIFY(qAbs(last - (left + 4)) <= 0.5);
}

void TestTrayPicture::keepsEveryNumberInside_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("one digit") << u"1"_s;
    QTest::newRow("a full hundred") << u"100"_s;
    QTest::newRow("fifty watts") << u"50W"_s;
    QTest::newRow("four hundred watts") << u"400W"_s;
    QTest::newRow("a text longer than any machine's") << u"1000000000000000"_s;
}

void TestTrayPicture::keepsEveryNumberInside()
{
    QFETCH(QString, text);
    for (const int pixels : {16, 22, 44, 64}) {
        const auto [first, last] =
            inkBetween(trayPicture(number(text), LabelPosition::left, pixels), 2, 16);
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
        QCOMPARE(trayPicture(number(text), LabelPosition::right, pixels),
                 trayPicture(number(seen), LabelPosition::right, pixels));
    QVERIFY(trayPicture(number(u"99W"_s), LabelPosition::right, 44)
            != trayPicture(number(u"99"_s), LabelPosition::right, 44));
}

void TestTrayPicture::iconHasAllSizes()
{
    const QIcon icon = trayIcon(number(u"71"_s), LabelPosition::left);
    for (const int pixels : {16, 22, 24, 32, 44, 48, 64})
        QVERIFY(icon.availableSizes().contains(QSize(pixels, pixels)));
}

void TestTrayPicture::widePictureShowsAllThreeInOrder_data()
{
    QTest::addColumn<LabelNumbers>("shown");
    QTest::newRow("typical values") << numbers(u"63"_s, u"41"_s, u"12W"_s);
    QTest::newRow("the lowest values") << numbers(u"0"_s, u"0"_s, u"0W"_s);
    QTest::newRow("the highest values") << numbers(u"100"_s, u"100"_s, u"999W"_s);
}

void TestTrayPicture::widePictureShowsAllThreeInOrder()
{
    QFETCH(LabelNumbers, shown);
    for (const int pixels : trayPictureSizes) {
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
