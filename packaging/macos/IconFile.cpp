#include "packaging/macos/IconFile.h"

#include <QBuffer>
#include <QColorSpace>
#include <QtEndian>

#include <algorithm>
#include <array>

// The file is a list of entries: a type of four letters, the length of the entry with these eight
// bytes, the data; numbers are big-endian, and the file as a whole is an entry of the type "icns".
// From 32 pixels at double scale on an entry is a PNG. The two smallest at single scale are not
// shown from PNGs in an application's icon; they are the older pair of colours, one compressed
// plane each, and a plain plane of opacity.

namespace corvane {

namespace {

struct EntryType {
    const char *name;
    int pixels;
};

/// The second of an equal size is the double scale of half the size.
constexpr std::array pngTypes{EntryType{"ic11", 32},  EntryType{"ic12", 64},
                              EntryType{"ic07", 128}, EntryType{"ic13", 256},
                              EntryType{"ic08", 256}, EntryType{"ic14", 512},
                              EntryType{"ic09", 512}, EntryType{"ic10", 1024}};

struct PlaneTypes {
    const char *colors;
    const char *opacity;
    int pixels;
};

constexpr std::array planeTypes{PlaneTypes{"is32", "s8mk", 16}, PlaneTypes{"il32", "l8mk", 32}};

QByteArray entry(const char *type, const QByteArray &data)
{
    QByteArray length(4, 0);
    qToBigEndian(static_cast<quint32>(8 + data.size()), length.data());
    return type + length + data;
}

QByteArray asPng(QImage image)
{
    image.setColorSpace(QColorSpace::SRgb);
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return data;
}

/// One byte a pixel; `shift` chooses it.
QByteArray plane(const QImage &image, int shift)
{
    QByteArray bytes;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            bytes.append(static_cast<char>(image.pixel(x, y) >> shift & 0xff));
    }
    return bytes;
}

/// How many bytes from `start` on are equal.
qsizetype runLength(const QByteArray &bytes, qsizetype start, qsizetype most)
{
    qsizetype end = start + 1;
    while (end < bytes.size() && end - start < most && bytes[end] == bytes[start])
        ++end;
    return end - start;
}

/// A run of 3 to 130 equal bytes is 125 more than its length, then the byte; 1 to 128 others are
/// one less than their number, then the bytes.
QByteArray compressed(const QByteArray &bytes)
{
    constexpr qsizetype shortestRun = 3;
    constexpr qsizetype longestRun = 130;
    constexpr qsizetype mostOthers = 128;
    QByteArray packed;
    qsizetype at = 0;
    while (at < bytes.size()) {
        const qsizetype run = runLength(bytes, at, longestRun);
        if (run >= shortestRun) {
            packed.append(static_cast<char>(run + 125)).append(bytes[at]);
            at += run;
            continue;
        }
        qsizetype end = at + run;
        while (end < bytes.size() && runLength(bytes, end, shortestRun) < shortestRun)
            ++end;
        const qsizetype count = std::min(end - at, mostOthers);
        packed.append(static_cast<char>(count - 1)).append(bytes.mid(at, count));
        at += count;
    }
    return packed;
}

} // namespace

QByteArray iconFile(const std::function<QImage(int pixels)> &picture)
{
    QByteArray entries;
    for (const PlaneTypes &types : planeTypes) {
        const QImage image = picture(types.pixels).convertToFormat(QImage::Format_ARGB32);
        const QByteArray colors = compressed(plane(image, 16)) + compressed(plane(image, 8))
            + compressed(plane(image, 0));
        entries += entry(types.colors, colors) + entry(types.opacity, plane(image, 24));
    }
    for (const EntryType &type : pngTypes)
        entries += entry(type.name, asPng(picture(type.pixels)));
    return entry("icns", entries);
}

} // namespace corvane
