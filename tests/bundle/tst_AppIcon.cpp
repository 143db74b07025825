#include "packaging/macos/AppIcon.h"

#include "packaging/macos/IconFile.h"

#include <QColorSpace>
#include <QImage>
#include <QTest>
#include <QtEndian>

#include <map>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// The entries of an icon file by their type; empty when the lengths do not add up.
std::map<QByteArray, QByteArray> entries(const QByteArray &file)
{
    const auto length = [&file](qsizetype at) {
        return qFromBigEndian<quint32>(file.constData() + at + 4);
    };
    if (file.size() < 8 || !file.startsWith("icns") || length(0) != file.size())
        return {};
    std::map<QByteArray, QByteArray> found;
    for (qsizetype at = 8; at < file.size(); at += length(at)) {
        if (file.size() - at < 8 || length(at) < 8 || at + length(at) > file.size())
            return {};
        found[file.mid(at, 4)] = file.mid(at + 8, length(at) - 8);
    }
    return found;
}

/// Undoes the compression of a plane, from `at` on.
QByteArray unpacked(const QByteArray &data, qsizetype &at, qsizetype size)
{
    QByteArray bytes;
    while (bytes.size() < size && at < data.size()) {
        const int head = static_cast<uchar>(data[at++]);
        if (head >= 128) {
            bytes.append(head - 125, data.at(at++));
        } else {
            bytes.append(data.mid(at, head + 1));
            at += head + 1;
        }
    }
    return bytes;
}

QImage decoded(const QByteArray &colors, const QByteArray &opacity, int pixels)
{
    qsizetype at = 0;
    const qsizetype size = static_cast<qsizetype>(pixels) * pixels;
    const QByteArray red = unpacked(colors, at, size);
    const QByteArray green = unpacked(colors, at, size);
    const QByteArray blue = unpacked(colors, at, size);
    if (at != colors.size() || blue.size() != size || opacity.size() != size)
        return {};
    QImage image(pixels, pixels, QImage::Format_ARGB32);
    for (int i = 0; i < size; ++i) {
        image.setPixel(i % pixels, i / pixels,
                       qRgba(static_cast<uchar>(red[i]), static_cast<uchar>(green[i]),
                             static_cast<uchar>(blue[i]), static_cast<uchar>(opacity[i])));
    }
    return image;
}

/// Noise, flat areas and long runs: every way of the compression.
QImage trickyPicture(int pixels)
{
    QImage image(pixels, pixels, QImage::Format_ARGB32);
    for (int y = 0; y < pixels; ++y) {
        for (int x = 0; x < pixels; ++x) {
            const int noise = (x * 73 + y * 151) % 256;
            image.setPixel(x, y,
                           qRgba(y < pixels / 2 ? 200 : noise, x / 2 * 16 % 256, noise, 255 - y));
        }
    }
    return image;
}

} // namespace

class TestAppIcon : public QObject {
    Q_OBJECT

private slots:
    void holdsEverySize_data();
    void holdsEverySize();
    void packsThePlanesOfTheSmallest_data();
    void packsThePlanesOfTheSmallest();
    void hasAMarginAroundItsBody();
    void isOpaqueInside();
};

void TestAppIcon::holdsEverySize_data()
{
    QTest::addColumn<QByteArray>("type");
    QTest::addColumn<int>("pixels");

    QTest::newRow("16 at double scale") << "ic11"_ba << 32;
    QTest::newRow("32 at double scale") << "ic12"_ba << 64;
    QTest::newRow("128") << "ic07"_ba << 128;
    QTest::newRow("128 at double scale") << "ic13"_ba << 256;
    QTest::newRow("256") << "ic08"_ba << 256;
    QTest::newRow("256 at double scale") << "ic14"_ba << 512;
    QTest::newRow("512") << "ic09"_ba << 512;
    QTest::newRow("512 at double scale") << "ic10"_ba << 1024;
}

void TestAppIcon::holdsEverySize()
{
    QFETCH(QByteArray, type);
    QFETCH(int, pixels);
    static const auto found = entries(iconFile(appIcon));
    QCOMPARE(found.size(), 12U);
    QImage image = QImage::fromData(found.at(type), "PNG");
    QCOMPARE(image.size(), QSize(pixels, pixels));
    QCOMPARE(image.colorSpace(), QColorSpace(QColorSpace::SRgb));
    image.setColorSpace({});
    QCOMPARE(image, appIcon(pixels).convertToFormat(image.format()));
}

void TestAppIcon::packsThePlanesOfTheSmallest_data()
{
    QTest::addColumn<QByteArray>("colors");
    QTest::addColumn<QByteArray>("opacity");
    QTest::addColumn<int>("pixels");

    QTest::newRow("16") << "is32"_ba
                        << "s8mk"_ba << 16;
    QTest::newRow("32") << "il32"_ba
                        << "l8mk"_ba << 32;
}

void TestAppIcon::packsThePlanesOfTheSmallest()
{
    QFETCH(QByteArray, colors);
    QFETCH(QByteArray, opacity);
    QFETCH(int, pixels);
    for (const auto &picture : {trickyPicture, appIcon}) {
        const auto found = entries(iconFile(picture));
        QCOMPARE(decoded(found.at(colors), found.at(opacity), pixels),
                 picture(pixels).convertToFormat(QImage::Format_ARGB32));
    }
}

void TestAppIcon::hasAMarginAroundItsBody()
{
    const QImage icon = appIcon(1024);
    QCOMPARE(icon.pixelColor(99, 512).alpha(), 0);
    QCOMPARE(icon.pixelColor(512, 924).alpha(), 0);
    QCOMPARE(icon.pixelColor(100, 512).alpha(), 255);
    QCOMPARE(icon.pixelColor(512, 923).alpha(), 255);
    QCOMPARE(icon.pixelColor(150, 150).alpha(), 0); // The corner is round.
}

void TestAppIcon::isOpaqueInside()
{
    const QImage icon = appIcon(128);
    for (int at = 24; at < 104; ++at)
        QCOMPARE(icon.pixelColor(at, at).alpha(), 255);
}

QTEST_MAIN(TestAppIcon)
#include "tst_AppIcon.moc"
