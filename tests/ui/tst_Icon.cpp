#include "ui/Icon.h"

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

constexpr double margin = 4;

/// All drawings in the resources, which the first use registers.
QStringList symbols()
{
    QImage image(1, 1, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    paintDrawing(painter, QString(), QRectF(0, 0, 1, 1), Qt::white);
    QStringList names;
    for (const QString &file : QDir(u":/icons"_s).entryList())
        names.append(QFileInfo(file).completeBaseName());
    return names;
}

using Paint = void (*)(QPainter &, const QString &, const QRectF &, const QColor &);

void paintMedium(QPainter &painter, const QString &symbol, const QRectF &target,
                 const QColor &color)
{
    paintIcon(painter, symbol, target, color);
}

/// The icon in a box of that size with an empty margin around it.
QImage painted(const QString &name, double size, double scale, const QColor &color = Qt::white,
               Paint paint = paintMedium)
{
    const int pixels = qCeil((size + 2 * margin) * scale);
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paint(painter, name, QRectF(margin, margin, size, size), color);
    return image;
}

/// Smallest rectangle of device pixels that holds all ink; null without any.
QRect inkOf(const QImage &image)
{
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixelColor(x, y).alpha() > 0)
                ink |= QRect(x, y, 1, 1);
        }
    }
    return ink;
}

} // namespace

class TestIcon : public QObject {
    Q_OBJECT

private slots:
    void everySymbolPaintsInsideItsBox_data();
    void everySymbolPaintsInsideItsBox();
    void noTwoSymbolsLookTheSame();
    void filledDrawingsKeepTheirCutOuts();
    void hasTheGivenColor();
    void hasTheGivenOpacity();
    void anUnknownNamePaintsNothing();
    void paintsTheSameTwice();
    void anEmptyTargetPaintsNothing();
};

void TestIcon::everySymbolPaintsInsideItsBox_data()
{
    QTest::addColumn<QString>("name");
    QVERIFY(symbols().size() >= 20);
    for (const QString &name : symbols())
        QTest::newRow(qPrintable(name)) << name;
}

void TestIcon::everySymbolPaintsInsideItsBox()
{
    QFETCH(QString, name);
    for (const double scale : {1.0, 1.25, 1.5, 2.0}) {
        for (const double size : {11.0, 13.0, 16.0, 24.0, 28.0}) {
            const QImage image = painted(name, size, scale);
            const QRect ink = inkOf(image);
            const QRectF box(margin * scale, margin * scale, size * scale, size * scale);
            QVERIFY2(box.toAlignedRect().adjusted(-1, -1, 1, 1).contains(ink),
                     qPrintable(u"%1 at %2"_s.arg(size).arg(scale)));
            // Icons fill their grid: none is so small that it looks lost beside the others.
            QVERIFY(std::max(ink.width(), ink.height()) >= 0.8 * size * scale);
            QVERIFY(std::abs(ink.center().x() + 0.5 - box.center().x()) <= 0.1 * size * scale);
        }
    }
}

void TestIcon::noTwoSymbolsLookTheSame()
{
    const QStringList names = symbols();
    for (qsizetype i = 0; i < names.size(); ++i) {
        for (qsizetype j = i + 1; j < names.size(); ++j)
            QVERIFY2(painted(names[i], 16, 1) != painted(names[j], 16, 1),
                     qPrintable(names[i] + u" and "_s + names[j]));
    }
}

void TestIcon::filledDrawingsKeepTheirCutOuts()
{
    const double size = 32;
    const QImage chip = painted(u"memorychip.fill"_s, size, 1, Qt::white, paintDrawing);
    const QImage processor = painted(u"cpu.fill"_s, size, 1, Qt::white, paintDrawing);
    const int centre = static_cast<int>(margin + size / 2);
    QCOMPARE(chip.pixelColor(centre, centre - 2).alpha(), 0); // The middle die.
    QCOMPARE(chip.pixelColor(centre + 4, centre - 2).alpha(), 255);
    QCOMPARE(processor.pixelColor(centre, centre).alpha(), 0); // The core.
    QCOMPARE(processor.pixelColor(centre + 8, centre).alpha(), 255);
}

void TestIcon::hasTheGivenColor()
{
    const QColor orange(255, 148, 41);
    const QImage image = painted(u"bolt.fill"_s, 24, 2, orange);
    QCOMPARE(image.pixelColor(image.rect().center()), orange);
}

void TestIcon::hasTheGivenOpacity()
{
    const QImage image = painted(u"bolt.fill"_s, 24, 2, QColor(255, 255, 255, 102));
    QVERIFY(std::abs(image.pixelColor(image.rect().center()).alpha() - 102) <= 1);
}

void TestIcon::anUnknownNamePaintsNothing()
{
    QVERIFY(inkOf(painted(u"no.such.symbol"_s, 16, 1)).isNull());
    QVERIFY(inkOf(painted(QString(), 16, 1)).isNull());
    QVERIFY(inkOf(painted(u"../resources"_s, 16, 1)).isNull());
}

void TestIcon::paintsTheSameTwice()
{
    const QImage first = painted(u"cpu"_s, 16, 1.25, Qt::green);
    painted(u"cpu"_s, 16, 1.25, Qt::red);
    QCOMPARE(painted(u"cpu"_s, 16, 1.25, Qt::green), first);
}

void TestIcon::anEmptyTargetPaintsNothing()
{
    QImage image(8, 8, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    paintIcon(painter, u"cpu"_s, QRectF(), Qt::white);
    paintIcon(painter, u"cpu"_s, QRectF(4, 4, -3, 5), Qt::white);
    painter.end();
    QVERIFY(inkOf(image).isNull());
}

QTEST_MAIN(TestIcon)
#include "tst_Icon.moc"
