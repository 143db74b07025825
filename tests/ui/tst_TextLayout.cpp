#include "support/Rendering.h"
#include "ui/TextLayout.h"
#include "ui/Theme.h"

#include <QHash>
#include <QPainterPath>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// The smallest box around the ink of a text, in points.
QRectF ink(const QString &text, const QFont &font, double scale)
{
    QImage image(QSize(300, 60) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(Qt::white);
    drawText(painter, {10, 40}, text, font);
    painter.end();
    QRect box;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 60)
                box |= QRect(x, y, 1, 1);
        }
    }
    return QRectF(QPointF(box.topLeft()) / scale, QSizeF(box.size()) / scale);
}

/// Sum of the opacities of a picture, in square points.
double inkArea(const QImage &image)
{
    double sum = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            sum += image.pixelColor(x, y).alphaF();
    }
    const double scale = image.devicePixelRatio();
    return sum / (scale * scale);
}

QImage emptyPicture(double scale)
{
    QImage image((QSizeF(200, 24) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    return image;
}

/// The area inside the outlines of the letters, filled at a large scale.
double outlineArea(const QString &text, QFont font)
{
    constexpr int enlarged = 64;
    const int size = font.pixelSize();
    font.setPixelSize(size * enlarged);
    font.setHintingPreference(QFont::PreferNoHinting);
    QPainterPath outline;
    outline.addText(0, 0, font, text);
    QImage image = emptyPicture(8);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(4, 16);
    painter.scale(1.0 / enlarged, 1.0 / enlarged);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    outline.setFillRule(Qt::WindingFill); // Letters of variable fonts overlap themselves.
    painter.drawPath(outline);
    painter.end();
    return inkArea(image);
}

struct SmallText {
    int size;
    QFont::Weight weight;
    QString text;
};

/// Ten texts as the views set them.
const std::vector<SmallText> &smallTexts()
{
    static const std::vector<SmallText> texts{{9, QFont::Medium, u"MEM"_s},
                                              {9, QFont::Medium, u"14:05:12"_s},
                                              {10, QFont::Normal, u"Compressed"_s},
                                              {10, QFont::DemiBold, u"20.94 GB"_s},
                                              {11, QFont::Normal, u"llama-server"_s},
                                              {11, QFont::Normal, u"16.69 W · 74°C"_s},
                                              {12, QFont::Medium, u"Memory"_s},
                                              {12, QFont::DemiBold, u"45.74 GB / 64 GB"_s},
                                              {13, QFont::DemiBold, u"Top Processes by RAM"_s},
                                              {13, QFont::DemiBold, u"100%"_s}};
    return texts;
}

} // namespace

class TestTextLayout : public QObject {
    Q_OBJECT

private slots:
    void textHasOneSizeAtEveryScale_data();
    void textHasOneSizeAtEveryScale();
    void smallTextIsAsBoldAsItsOutline_data();
    void smallTextIsAsBoldAsItsOutline();
    void widthsHaveTheirFractions_data();
    void widthsHaveTheirFractions();
    void digitsHaveOneWidth();
    void measuresMoreTextsThanItRemembers();
    void centresTextInItsLine();
    void elidesAtTheEnd();
    void makesOneLine_data();
    void makesOneLine();
};

void TestTextLayout::textHasOneSizeAtEveryScale_data()
{
    QFont spaced = Theme::systemFont(20);
    spaced.setLetterSpacing(QFont::AbsoluteSpacing, 8);
    QTest::addColumn<QFont>("font");
    QTest::newRow("the system's font") << Theme::systemFont(22);
    QTest::newRow("the monospaced font") << Theme::monospacedFont(20);
    QTest::newRow("spaced letters") << spaced;
}

void TestTextLayout::textHasOneSizeAtEveryScale()
{
    QFETCH(QFont, font);
    const QRectF once = ink(u"HxH"_s, font, 1);
    QVERIFY(once.height() > 10);
    for (const double scale : {1.25, 1.5, 2.0, 3.0}) {
        const QRectF scaled = ink(u"HxH"_s, font, scale);
        QVERIFY(qAbs(scaled.width() - once.width()) < 2);
        QVERIFY(qAbs(scaled.height() - once.height()) < 2);
        QVERIFY(qAbs(scaled.bottom() - once.bottom()) < 1.5);
    }
}

void TestTextLayout::smallTextIsAsBoldAsItsOutline_data()
{
    QTest::addColumn<double>("scale");
    QTest::newRow("scale 1") << 1.0;
    QTest::newRow("scale 1.25") << 1.25;
    QTest::newRow("scale 1.5") << 1.5;
    QTest::newRow("scale 2") << 2.0;
}

void TestTextLayout::smallTextIsAsBoldAsItsOutline()
{
    QFETCH(double, scale);
    for (const SmallText &small : smallTexts()) {
        const QFont font = Theme::systemFont(small.size, small.weight);
        QImage image = emptyPicture(scale);
        QPainter painter(&image);
        painter.setPen(Qt::white);
        drawText(painter, {4, 16}, small.text, font);
        painter.end();
        const double boldness = inkArea(image) / outlineArea(small.text, font);
        QVERIFY2(boldness > 0.9 && boldness < 1.1,
                 qPrintable(u"%1 of size %2: %3"_s.arg(small.text).arg(small.size).arg(boldness)));
    }
}

void TestTextLayout::widthsHaveTheirFractions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QFont>("font");
    QFont spaced = Theme::systemFont(10, QFont::DemiBold);
    spaced.setLetterSpacing(QFont::AbsoluteSpacing, 0.5);
    QTest::newRow("one letter") << u"M"_s << Theme::systemFont(9);
    QTest::newRow("a word") << u"Compressed"_s << Theme::systemFont(10);
    QTest::newRow("bold") << u"Top Processes by RAM"_s << Theme::systemFont(13, QFont::DemiBold);
    QTest::newRow("digits of their own widths")
        << u"38.94 GB"_s << Theme::systemFont(10, QFont::DemiBold);
    QTest::newRow("spaced letters") << u"NORMAL"_s << spaced;
}

/// As wide as at a size at which a rounding is nothing, so that a row of texts adds up.
void TestTextLayout::widthsHaveTheirFractions()
{
    QFETCH(QString, text);
    QFETCH(QFont, font);
    constexpr int enlarged = 100;
    QFont large = font;
    large.setPixelSize(font.pixelSize() * enlarged);
    large.setLetterSpacing(QFont::AbsoluteSpacing, font.letterSpacing() * enlarged);
    const double wanted = QFontMetricsF(large).horizontalAdvance(text) / enlarged;
    QVERIFY(wanted > 5);
    const double width = textWidth(text, font, Digits::proportional);
    QVERIFY2(std::abs(width - wanted) < 0.005 * static_cast<double>(text.size()),
             qPrintable(u"%1, not %2"_s.arg(width).arg(wanted)));
}

void TestTextLayout::digitsHaveOneWidth()
{
    const QFont font = Theme::systemFont(13, QFont::DemiBold);
    for (const QString &digits : {u"00"_s, u"11"_s, u"17"_s, u"99"_s})
        QCOMPARE(textWidth(digits, font), textWidth(u"88"_s, font));
    QCOMPARE(textWidth(u"GPU"_s, font), textWidth(u"GPU"_s, font, Digits::proportional));
}

void TestTextLayout::measuresMoreTextsThanItRemembers()
{
    const QFont font = Theme::systemFont(11);
    QHash<QString, double> widths;
    for (int round = 0; round < 2; ++round) {
        for (char16_t letter = 0x4E00; letter < 0x4E00 + 1000; ++letter) {
            const QString text(2, QChar(letter));
            const double width = textWidth(text, font);
            QVERIFY(width > 0);
            QCOMPARE(width, widths.value(text, width));
            widths[text] = width;
        }
    }
}

void TestTextLayout::centresTextInItsLine()
{
    const QFont font = Theme::systemFont(20);
    const QFontMetricsF metrics(font);
    const TextLine line{100, 40};
    const double baseline = line.baseline(font);
    QCOMPARE(line.bottom(), 140.0);
    QCOMPARE(baseline - metrics.ascent() - line.top, line.bottom() - baseline - metrics.descent());
}

void TestTextLayout::elidesAtTheEnd()
{
    const QFont font = Theme::systemFont(11);
    const QString cut = elided(QString(100, u'x'), font, 130);
    QVERIFY(cut.endsWith(u'…') && cut.count(u'…') == 1);
    QVERIFY(textWidth(cut, font) <= 130);
    QCOMPARE(elided(u"short"_s, font, 130), u"short"_s);
}

void TestTextLayout::makesOneLine_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("line");
    QTest::newRow("plain text stays")
        << u"llama-server <b>&amp;</b>"_s << u"llama-server <b>&amp;</b>"_s;
    QTest::newRow("letters of every script stay") << u"тест 模型 😀"_s << u"тест 模型 😀"_s;
    QTest::newRow("line breaks and tabs") << u"a\nb\r\tc"_s << u"a\uFFFDb\uFFFD\uFFFDc"_s;
    QTest::newRow("a line and a paragraph separator") << u"a\u2028b\u2029"_s << u"a\uFFFDb\uFFFD"_s;
    QTest::newRow("overrides and isolates")
        << u"a\u202Eb\u2066c\u200F"_s << u"a\uFFFDb\uFFFDc\uFFFD"_s;
    QTest::newRow("a leading byte-order mark") << u"\uFEFFa"_s << u"\uFFFDa"_s;
    QTest::newRow("tags and format characters beyond the first plane")
        << u"a\U000E0041\U0001D173b\U000110BDc"_s << u"a\uFFFD\uFFFDb\uFFFDc"_s;
    QTest::newRow("half of a pair") << QString(u"a"_s + QChar(0xD83D) + u"b"_s) << u"a\uFFFDb"_s;
    QTest::newRow("a pair at the cut")
        << QString(QString(511, u'x') + u"😀"_s) << QString(QString(511, u'x') + QChar(0xFFFD));
    QTest::newRow("4,000 characters are cut") << QString(4000, u'x') << QString(512, u'x');
    QTest::newRow("an empty text") << QString() << QString();
}

void TestTextLayout::makesOneLine()
{
    QFETCH(QString, text);
    QTEST(singleLine(text), "line");
}

QTEST_MAIN(TestTextLayout)
#include "tst_TextLayout.moc"
