#include "cards/CardText.h"
#include "ui/Theme.h"

#include <QImage>
#include <QPainter>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// A line with its end, or its middle, at (200, 50).
CardText line(const QString &text, Qt::AlignmentFlag side = Qt::AlignLeft)
{
    return {.text = text,
            .font = Theme::systemFont(13),
            .color = Qt::white,
            .side = side,
            .baseline = {200, 50}};
}

CardText cutLine(const QString &text, double mostWidth)
{
    CardText cut = line(text);
    cut.mostWidth = mostWidth;
    return cut;
}

/// The box around all that painting touches, in points.
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
    void standsAtItsSide_data();
    void standsAtItsSide();
    void isCutWhereItIsTooWide();
    void paintsWithinItsBounds_data();
    void paintsWithinItsBounds();
    void speaksForItself_data();
    void speaksForItself();
};

void TestCardText::standsAtItsSide_data()
{
    QTest::addColumn<Qt::AlignmentFlag>("side");
    QTest::addColumn<double>("share");
    QTest::newRow("left of its text") << Qt::AlignLeft << 0.0;
    QTest::newRow("in its middle") << Qt::AlignHCenter << 0.5;
    QTest::newRow("right of it") << Qt::AlignRight << 1.0;
}

/// The share of its text that lies left of the place.
void TestCardText::standsAtItsSide()
{
    QFETCH(Qt::AlignmentFlag, side);
    QFETCH(double, share);
    const CardText text = line(u"12.4 W"_s, side);
    QCOMPARE(text.bounds().center().x(), 200 + (0.5 - share) * text.width());
    const QRectF painted = ink(text, 2);
    QVERIFY(qAbs(painted.center().x() - text.bounds().center().x()) < 1.5);
}

void TestCardText::isCutWhereItIsTooWide()
{
    const QString words = u"a name that is too long for its place"_s;
    const double whole = line(words).width();
    QCOMPARE(cutLine(words, whole).width(), whole);
    const CardText cut = cutLine(words, 80);
    QVERIFY(cut.width() <= 80 && cut.width() > 60);
    QVERIFY(ink(cut, 2).right() <= 281);
    QCOMPARE(cut.spoken().value, words);
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
    QTest::newRow("a cut line") << cutLine(u"a name that is too long for its place"_s, 80);
}

/// Since what changes is repainted within these.
void TestCardText::paintsWithinItsBounds()
{
    QFETCH(CardText, text);
    for (const double scale : {1.0, 1.25, 2.0}) {
        const QRectF painted = ink(text, scale);
        QVERIFY(painted.width() > 10);
        QVERIFY(text.bounds().contains(painted));
    }
}

void TestCardText::speaksForItself_data()
{
    CardText caption = line(u"MEM"_s);
    caption.silent = true;
    QTest::addColumn<CardText>("text");
    QTest::addColumn<bool>("isSpoken");
    QTest::newRow("a text") << line(u"71%"_s) << true;
    QTest::newRow("nothing is not said") << line(QString()) << false;
    QTest::newRow("nor is a caption that another text repeats") << caption << false;
}

void TestCardText::speaksForItself()
{
    QFETCH(CardText, text);
    QTEST(text.isSpoken(), "isSpoken");
    QCOMPARE(text.spoken().value, text.text);
    QCOMPARE(text.spoken().place, text.bounds());
}

QTEST_MAIN(TestCardText)
#include "tst_CardText.moc"
