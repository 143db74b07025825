#include "OffscreenApplication.h"

#include "ui/TextLayout.h"

#include <QFont>
#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cstdint>

using namespace corvane;

namespace {

bool breaksOrReorders(QChar character)
{
    const char16_t code = character.unicode();
    return code < 0x20 || (code >= 0x7f && code < 0xa0) || (code >= 0x200e && code <= 0x200f)
        || (code >= 0x2028 && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069);
}

} // namespace

/// Any bytes as the name of a process, which a row cuts and paints. The first byte is the width.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    fuzz::needApplication();
    static const QFont font;
    const auto name = QString::fromUtf8(reinterpret_cast<const char *>(data) + 1,
                                        static_cast<qsizetype>(size) - 1);
    const QString line = singleLine(name);
    if (line.size() > name.size() || std::ranges::any_of(line, breaksOrReorders))
        __builtin_trap();
    const QString cut = elided(line, font, data[0]);
    if (cut.size() > line.size() + 1)
        __builtin_trap();

    QImage image(64, 24, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    drawText(painter, {0, 18}, cut, font);
    return 0;
}
