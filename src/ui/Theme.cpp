#include "ui/Theme.h"

#include "threads/MainThread.h"
#include "ui/SystemStyle.h"

#include <QFontDatabase>
#include <QFontInfo>
#include <QSizeF>

namespace corvane::Theme {

namespace {

using namespace Qt::StringLiterals;

/// The first installed family of the list; else that of `fallback`.
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

QColor withOpacity(const QColor &color, double opacity)
{
    QColor faded = color;
    faded.setAlphaF(static_cast<float>(color.alphaF() * opacity));
    return faded;
}

QLinearGradient windowGradient(const QSizeF &size)
{
    QLinearGradient gradient(0, 0, size.width(), size.height());
    gradient.setColorAt(0, srgb(0.05F, 0.06F, 0.09F));
    gradient.setColorAt(1, srgb(0.03F, 0.04F, 0.06F));
    return gradient;
}

QColor faintText(float share)
{
    static const std::optional<QColor> system = systemSecondaryColor();
    return system ? withOpacity(*system, share) : srgb8(240, 243, 255, 0.82F * share);
}

QFont systemFont(double pixelSize, QFont::Weight weight)
{
    assertMainThread();
    static const QString family = [] {
        const QString system = systemFontFamily();
        // The variable form has TrueType outlines. Qt darkens the stems of the other form's, which
        // makes small text up to 1.4 times as bold at scales below 2. Before Inter 4.0 both have
        // one name; which of them Qt takes is then up to fontconfig.
        return system.isEmpty()
            ? installedFamily({u"Inter Variable"_s, u"Inter"_s, u"Noto Sans"_s},
                              QFontDatabase::systemFont(QFontDatabase::GeneralFont))
            : system;
    }();
    return sized(family, pixelSize, weight);
}

QFont roundedFont(double pixelSize, QFont::Weight weight)
{
    assertMainThread();
    static const bool isFound = [] {
        const QString family = systemRoundedFamily();
        return !family.isEmpty() && QFontInfo(QFont(family)).family() == family;
    }();
    return isFound ? sized(systemRoundedFamily(), pixelSize, weight)
                   : systemFont(pixelSize, weight);
}

QFont monospacedFont(double pixelSize)
{
    assertMainThread();
    static const QString family = [] {
        const QFont system = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        return systemFontFamily().isEmpty()
            ? installedFamily({u"Noto Sans Mono"_s, u"DejaVu Sans Mono"_s}, system)
            : system.family();
    }();
    return sized(family, pixelSize, QFont::Normal);
}

} // namespace corvane::Theme
