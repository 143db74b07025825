#include "OffscreenApplication.h"

#include "ui/Markdown.h"

#include <cstdint>

using namespace corvane;

namespace {

void expect(bool isSound)
{
    if (!isSound)
        __builtin_trap();
}

QString withoutSpaces(QString text)
{
    return text.remove(u' ').remove(u'\n');
}

const MarkdownStyle &style()
{
    fuzz::needApplication();
    static const MarkdownStyle made{.codePadding = 3};
    return made;
}

/// Only spaces and line breaks may be lost, and lines follow each other, filled from the left.
void check(const MarkdownLayout &layout, const QString &text)
{
    QString laidOut;
    int line = 0;
    double end = 0;
    for (const MarkdownPiece &piece : layout.pieces) {
        expect(piece.line == line || (piece.line > line && piece.line < layout.lineCount));
        expect(piece.line == line ? piece.x >= end - 0.01 : piece.x == 0);
        line = piece.line;
        end = piece.x + piece.width;
        laidOut += piece.run.text;
    }
    expect(withoutSpaces(laidOut) == withoutSpaces(text));
}

} // namespace

/// The first byte is the width in points, the rest an explanatory text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const auto text = QString::fromUtf8(reinterpret_cast<const char *>(data) + 1,
                                        static_cast<qsizetype>(size) - 1);
    const QString plain = plainText(text);
    expect(plain.size() <= text.size());
    check(layOut(markdownRuns(text), style(), data[0]), plain);
    return 0;
}
