#include "charts/HoverPill.h"
#include "support/Rendering.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

PillContent powerPill()
{
    return {u"14:05:15"_s,
            {totalRow(u"39.60 W"_s, Theme::power), componentRow(u"CPU"_s, u"9.30"_s, Theme::cpu),
             componentRow(u"GPU"_s, u"29.92"_s, Theme::gpu),
             componentRow(u"ANE"_s, u"0.38"_s, Theme::ane)}};
}

PillContent utilizationPill()
{
    return {u"14:05:03"_s, {valuesRow({u"39%"_s, u"13.89W"_s, u"3.08GHz"_s}, Theme::cpu)}};
}

QImage painted(const HoverPill &pill, double scale)
{
    QImage image((QSizeF(200, 120) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    pill.paint(painter, {20, 20});
    return image;
}

/// Whether some pixel of that part has that colour.
bool hasColor(const QImage &image, const QRectF &part, const QColor &color)
{
    const double scale = image.devicePixelRatio();
    const QRect pixels(QPointF(part.topLeft() * scale).toPoint(), (part.size() * scale).toSize());
    for (int y = pixels.top(); y <= pixels.bottom(); ++y) {
        for (int x = pixels.left(); x <= pixels.right(); ++x) {
            if (isClose(image.pixelColor(x, y), color, 6))
                return true;
        }
    }
    return false;
}

} // namespace

class TestHoverPill : public QObject {
    Q_OBJECT

private slots:
    void isAsLargeAsItsContentAndPadding();
    void aComponentRowKeepsLabelAndValueApart();
    void returnsWhetherTheContentChanged();
    void paintsBoxAndShadow_data();
    void paintsBoxAndShadow();
    void paintsEachComponentInItsColor();
    void contentIsOneAccessibleLine();
    void hasABoxWithoutRows();
};

void TestHoverPill::isAsLargeAsItsContentAndPadding()
{
    HoverPill pill;
    pill.show(powerPill());
    QCOMPARE(pill.size().height(), 12 + 18 + 3 * 14 + 10.0);

    pill.show(utilizationPill());
    const QFont font = Theme::systemFont(11, QFont::DemiBold);
    const double values = textWidth(u"39%"_s, font) + 8 + textWidth(u"13.89W"_s, font) + 8
        + textWidth(u"3.08GHz"_s, font);
    QCOMPARE(pill.size().height(), 12 + 15 + 10.0);
    QCOMPARE(pill.size().width(), values + 16);
}

void TestHoverPill::aComponentRowKeepsLabelAndValueApart()
{
    HoverPill pill;
    pill.show({QString(), {componentRow(u"GPU"_s, u"129.92"_s, Theme::gpu)}});
    const double least = 5 + 5 + textWidth(u"GPU"_s, Theme::systemFont(9)) + 14
        + textWidth(u"129.92"_s, Theme::systemFont(10, QFont::DemiBold));
    QCOMPARE(pill.size().width(), least + 16);
}

void TestHoverPill::returnsWhetherTheContentChanged()
{
    HoverPill pill;
    QVERIFY(pill.show(powerPill()));
    QVERIFY(!pill.show(powerPill()));
    QVERIFY(pill.show(utilizationPill()));
}

void TestHoverPill::paintsBoxAndShadow_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("scale 1") << 1.0;
    QTest::newRow("scale 1.25") << 1.25;
    QTest::newRow("scale 2") << 2.0;
}

void TestHoverPill::paintsBoxAndShadow()
{
    QFETCH(double, scale);
    HoverPill pill;
    pill.show(powerPill());
    const QImage image = painted(pill, scale);
    const double right = 20 + pill.size().width();
    const double bottom = 20 + pill.size().height();

    const QColor inside = pixelAt(image, right - 4, 30);
    QVERIFY(isClose(QColor(inside.rgb()), QColor(33, 36, 46), 4));
    QVERIFY(inside.alpha() >= 245);
    QVERIFY(pixelAt(image, 60, 20.5).lightness() > inside.lightness() + 10); // The border.
    // Outside the round corners there is only the shadow.
    QVERIFY(pixelAt(image, 20.5, 20.5).alpha() < 120);
    // The shadow is darker below the box than above it, and ends nearby.
    const int below = pixelAt(image, 60, bottom + 2).alpha();
    const int above = pixelAt(image, 60, 17).alpha();
    QVERIFY(below > above);
    QVERIFY(above > 0);
    QVERIFY(below < 102);
    QCOMPARE(pixelAt(image, 60, bottom + 16).alpha(), 0);
}

void TestHoverPill::paintsEachComponentInItsColor()
{
    HoverPill pill;
    pill.show(powerPill());
    const QImage image = painted(pill, 2);
    const double textLeft = 28;
    const double contentWidth = pill.size().width() - 16;
    QVERIFY(hasColor(image, {textLeft, 37, contentWidth, 18}, Theme::power));
    const QColor colors[] = {Theme::cpu, Theme::gpu, Theme::ane};
    for (int row = 0; row < 3; ++row) {
        const double top = 25 + 12 + 18 + 14 * row;
        QVERIFY(isClose(pixelAt(image, textLeft + 2.5, top + 7), colors[row])); // The dot.
        QVERIFY(hasColor(image, {textLeft + contentWidth - 24, top, 24, 14}, colors[row]));
        QVERIFY(!hasColor(image, {textLeft + 8, top, 16, 14}, colors[row])); // The label.
    }
}

void TestHoverPill::contentIsOneAccessibleLine()
{
    QCOMPARE(accessibleText(powerPill()), u"14:05:15, 39.60 W, CPU 9.30, GPU 29.92, ANE 0.38"_s);
    QCOMPARE(accessibleText(utilizationPill()), u"14:05:03, 39%, 13.89W, 3.08GHz"_s);
    QCOMPARE(accessibleText({}), QString());
}

void TestHoverPill::hasABoxWithoutRows()
{
    HoverPill pill;
    pill.show({u" "_s, {}});
    QCOMPARE(pill.size().height(), 22.0);
    QVERIFY(pixelAt(painted(pill, 1), 24, 30).alpha() > 200);
}

QTEST_MAIN(TestHoverPill)
#include "tst_HoverPill.moc"
