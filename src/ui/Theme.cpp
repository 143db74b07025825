#include "ui/Theme.h"

#include <QFontDatabase>
#include <QSizeF>

namespace corvane::Theme {

namespace {

using namespace Qt::StringLiterals;

QColor white(double opacity)
{
    return QColor::fromRgbF(1, 1, 1, static_cast<float>(opacity));
}

QColor unitColor(float red, float green, float blue)
{
    return QColor::fromRgbF(red, green, blue);
}

/// The first family of the list that is installed; `fallback` otherwise.
QString installedFamily(const QStringList &families, const QFont &fallback)
{
    for (const QString &family : families) {
        if (QFontDatabase::hasFamily(family))
            return family;
    }
    return fallback.family();
}

QFont sized(const QString &family, double pixelSize, QFont::Weight weight)
{
    QFont font(family);
    font.setPixelSize(qRound(pixelSize));
    font.setWeight(weight);
    return font;
}

} // namespace

const QColor &cpu()
{
    static const QColor color = unitColor(0.3F, 0.65F, 1.0F);
    return color;
}

const QColor &gpu()
{
    static const QColor color = unitColor(1.0F, 0.58F, 0.16F);
    return color;
}

const QColor &ane()
{
    static const QColor color = unitColor(0.72F, 0.42F, 1.0F);
    return color;
}

const QColor &power()
{
    static const QColor color = unitColor(1.0F, 0.85F, 0.3F);
    return color;
}

const QColor &memory()
{
    static const QColor color = unitColor(0.2F, 0.8F, 0.55F);
    return color;
}

const QColor &textPrimary()
{
    static const QColor color(247, 248, 252);
    return color;
}

const QColor &textSecondary()
{
    static const QColor color = withOpacity(QColor(240, 243, 255), 0.82);
    return color;
}

const QColor &textTertiary()
{
    static const QColor color = withOpacity(textSecondary(), 0.6);
    return color;
}

const QColor &critical()
{
    static const QColor color(255, 69, 58);
    return color;
}

const QColor &track()
{
    static const QColor color = white(0.05);
    return color;
}

const QColor &tag()
{
    static const QColor color = white(0.06);
    return color;
}

const QColor &scrollThumb()
{
    static const QColor color = white(0.22);
    return color;
}

const QColor &popoverFill()
{
    static const QColor color(38, 42, 53);
    return color;
}

const QColor &popoverStroke()
{
    static const QColor color = white(0.12);
    return color;
}

const QColor &codeText()
{
    static const QColor color(220, 227, 245);
    return color;
}

const QColor &codeFill()
{
    static const QColor color = white(0.07);
    return color;
}

const QColor &cardFill()
{
    static const QColor color = white(0.045);
    return color;
}

const QColor &cardStroke()
{
    static const QColor color = white(0.06);
    return color;
}

const QColor &panelFill()
{
    static const QColor color(27, 30, 39);
    return color;
}

const QColor &panelStroke()
{
    static const QColor color = white(0.10);
    return color;
}

const QColor &divider()
{
    static const QColor color = white(0.09);
    return color;
}

const QColor &plate()
{
    static const QColor color = withOpacity(QColor(20, 23, 31), 0.92);
    return color;
}

const QColor &plateStroke()
{
    static const QColor color = white(0.1);
    return color;
}

const QColor &pillFill()
{
    static const QColor color = withOpacity(QColor(33, 36, 46), 0.96);
    return color;
}

const QColor &pillStroke()
{
    static const QColor color = white(0.1);
    return color;
}

const QColor &chartGrid()
{
    static const QColor color = white(0.05);
    return color;
}

const QColor &chartCursor()
{
    static const QColor color = white(0.35);
    return color;
}

const QColor &timeLabel()
{
    static const QColor color = withOpacity(textSecondary(), 0.5);
    return color;
}

const QColor &timeLabelTag()
{
    static const QColor color = withOpacity(QColor(11, 13, 20), 0.5);
    return color;
}

const QColor &focusRing()
{
    static const QColor color = withOpacity(cpu(), 0.6);
    return color;
}

const QColor &tabBar()
{
    static const QColor color = white(0.03);
    return color;
}

const QColor &tabBarLine()
{
    static const QColor color = white(0.07);
    return color;
}

const QColor &chosenTab()
{
    static const QColor color = withOpacity(cpu(), 0.16);
    return color;
}

const QColor &chosenTabText()
{
    static const QColor color(125, 190, 255);
    return color;
}

const QColor &switchOn()
{
    static const QColor color(47, 134, 224);
    return color;
}

const QColor &switchOff()
{
    static const QColor color = white(0.16);
    return color;
}

const QColor &switchStroke()
{
    static const QColor color = white(0.14);
    return color;
}

QColor withOpacity(const QColor &colour, double opacity)
{
    QColor faded = colour;
    faded.setAlphaF(static_cast<float>(colour.alphaF() * opacity));
    return faded;
}

QLinearGradient windowGradient(const QSizeF &size)
{
    QLinearGradient gradient(0, 0, size.width(), size.height());
    gradient.setColorAt(0, QColor::fromRgbF(0.05F, 0.06F, 0.09F));
    gradient.setColorAt(1, QColor::fromRgbF(0.03F, 0.04F, 0.06F));
    return gradient;
}

QFont systemFont(double pixelSize, QFont::Weight weight)
{
    static const QString family = installedFamily(
        {u"Inter"_s, u"Noto Sans"_s}, QFontDatabase::systemFont(QFontDatabase::GeneralFont));
    return sized(family, pixelSize, weight);
}

QFont monospacedFont(double pixelSize)
{
    static const QString family =
        installedFamily({u"Noto Sans Mono"_s, u"DejaVu Sans Mono"_s},
                        QFontDatabase::systemFont(QFontDatabase::FixedFont));
    return sized(family, pixelSize, QFont::Normal);
}

} // namespace corvane::Theme
