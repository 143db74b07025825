#include "cards/CardText.h"
#include "ui/Theme.h"

#include <QImage>
#include <QPainter>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// A line whose baseline has its left end, right end or middle at (200, 50).
CardText line(const QString &text, Qt::AlignmentFlag alignment = Qt::AlignLeft)
{
    return {.text = text,
            .font = Theme::systemFont(13),
            .color = Qt::white,
            .alignment = alignment,
            .baseline = {200, 50}};
}

CardText limitedLine(const QString &text, double maxWidth)
{
    CardText cut = line(text);
    cut.maxWidth = maxWidth;
    return cut;
}

/// Bounding box of all painted pixels, in points.
QRectF ink(const CardText &line, double scale)
{
    QImage image(QSize(400, 100) * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    line.paint(painter);
    painter.end();
    QRect box;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 0)
                box |= QRect(x, y, 1, 1);
        }
    }
    return QRectF(QPointF(box.topLeft()) / scale, QSizeF(box.size()) / scale);
}

} // namespace

class TestCardText : public QObject {
    Q_OBJECT

private slots:
    void isAligned_data();
    void isAligned();
    void elidesWhatIsTooWide();
    void paintsWithinItsBounds_data();
    void paintsWithinItsBounds();
    void isAccessible_data();
    void isAccessible();
};

void TestCardText::isAligned_data()
{
    QTest::addColumn<Qt::AlignmentFlag>("alignment");
    QTest::addColumn<double>("shareAtLeft");
    QTest::newRow("left") << Qt::AlignLeft << 0.0;
    QTest::newRow("horizontally centred") << Qt::AlignHCenter << 0.5;
    QTest::newRow("right") << Qt::AlignRight << 1.0;
}

void TestCardText::isAligned()
{
    QFETCH(Qt::AlignmentFlag, alignment);
    QFETCH(double, shareAtLeft);
    const CardText text = line(u"12.4 W"_s, alignment);
    QCOMPARE(text.bounds().center().x(), 200 + (0.5 - shareAtLeft) * text.width());
    const QRectF painted = ink(text, 2);
    QVERIFY(qAbs(painted.center().x() - text.bounds().center().x()) < 1.5);
}

void TestCardText::elidesWhatIsTooWide()
{
    const QString words = u"a name that is too long for its place"_s;
    const double whole = line(words).width();
    QCOMPARE(limitedLine(words, whole).width(), whole);
    const CardText cut = limitedLine(words, 80);
    QVERIFY(cut.width() <= 80 && cut.width() > 60);
    QVERIFY(ink(cut, 2).right() <= 281);
    QCOMPARE(cut.accessible().value, words);
}

void TestCardText::paintsWithinItsBounds_data()
{
    CardText slanted = line(u"fjord"_s);
    slanted.font.setItalic(true);
    CardText figure = line(u"71"_s, Qt::AlignRight);
    figure.font = Theme::systemFont(30, QFont::DemiBold);
    QTest::addColumn<CardText>("text");
    QTest::newRow("ascenders and descenders") << line(u"Åpfel, gjy"_s);
    QTest::newRow("slanted letters") << slanted;
    QTest::newRow("a large figure") << figure;
    QTest::newRow("digits on one width") << line(u"11.11 W"_s, Qt::AlignHCenter);
    QTest::newRow("an elided line") << limitedLine(u"a name that is too long for its place"_s, 80);
}

/// Repaints are limited to the bounds.
void TestCardText::paintsWithinItsBounds()
{
    QFETCH(CardText, text);
    for (const double scale : {1.0, 1.25, 2.0}) {
        const QRectF painted = ink(text, scale);
        QVERIFY(painted.width() > 10);
        QVERIFY(text.bounds().contains(painted));
    }
}

void TestCardText::isAccessible_data()
{
    CardText caption = line(u"MEM"_s);
    caption.isCaption = true;
    QTest::addColumn<CardText>("text");
    QTest::addColumn<bool>("isAccessible");
    QTest::newRow("a text") << line(u"71%"_s) << true;
    QTest::newRow("not an empty text") << line(QString()) << false;
    QTest::newRow("not a caption") << caption << false;
}

void TestCardText::isAccessible()
{
    QFETCH(CardText, text);
    QTEST(text.isAccessible(), "isAccessible");
    QCOMPARE(text.accessible().value, text.text);
    QCOMPARE(text.accessible().place, text.bounds());
}

QTEST_MAIN(TestCardText)
#include "tst_CardText.moc"
