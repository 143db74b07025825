#pragma once

#include <QColor>
#include <QFont>
#include <QLinearGradient>

namespace corvane {

/// The palette and the fonts of every view.
namespace Theme {

/// A colour of sRGB components and an opacity, each from 0 to 1.
constexpr QColor srgb(float red, float green, float blue, float opacity = 1)
{
    const auto wide = [](float share) { return static_cast<ushort>(qRound(share * 0xffff)); };
    return QColor(QColor::Rgb, wide(opacity), wide(red), wide(green), wide(blue));
}

/// The same with components from 0 to 255.
constexpr QColor srgb8(int red, int green, int blue, float opacity = 1)
{
    constexpr float full = 255;
    return srgb(red / full, green / full, blue / full, opacity);
}

constexpr QColor white(float opacity)
{
    return srgb(1, 1, 1, opacity);
}

constexpr QColor lightBlue(float opacity)
{
    return srgb(0.3F, 0.65F, 1.0F, opacity);
}

/// The colour of explanatory text at `share` of its opacity: the system's own on a Mac.
QColor faintText(float share);

// These five identify their quantity everywhere.
inline constexpr QColor cpu = lightBlue(1);
inline constexpr QColor gpu = srgb(1.0F, 0.58F, 0.16F);
inline constexpr QColor ane = srgb(0.72F, 0.42F, 1.0F);
inline constexpr QColor power = srgb(1.0F, 0.85F, 0.3F);
inline constexpr QColor memory = srgb(0.2F, 0.8F, 0.55F);

inline constexpr QColor textPrimary = srgb8(247, 248, 252); ///< Titles, names, values.
inline const QColor textSecondary = faintText(1);           ///< Explanatory text.
inline const QColor textTertiary = faintText(0.6F);         ///< The info icon and faint captions.
inline constexpr QColor critical = srgb8(255, 69, 58);      ///< Critical pressure, failures.

inline constexpr QColor cardFill = white(0.045F);
inline constexpr QColor cardStroke = white(0.06F); ///< The hairline around every card.
inline constexpr QColor track = white(0.05F);      ///< The part of a bar that is not filled.
inline constexpr QColor tag = white(0.06F);        ///< Behind a count.
inline constexpr QColor choiceFill = white(0.05F); ///< Behind several words, one of them chosen.
inline constexpr QColor chosenFill = white(0.13F);
inline constexpr QColor scrollThumb = white(0.22F);
inline constexpr QColor focusRing = lightBlue(0.6F);

inline constexpr QColor chartGrid = white(0.05F);
inline constexpr QColor chartCursor = white(0.35F);
inline const QColor timeLabel = faintText(0.5F);
/// Keeps a time label readable on a chart's fill and above a line that crosses it.
inline constexpr QColor timeLabelTag = srgb8(11, 13, 20, 0.8F);
/// Behind the values at a chart's cursor.
inline constexpr QColor pillFill = srgb8(33, 36, 46, 0.96F);
inline constexpr QColor pillStroke = white(0.1F);

inline constexpr QColor popoverFill = srgb8(38, 42, 53);
inline constexpr QColor popoverStroke = white(0.12F);
inline constexpr QColor codeText = srgb8(220, 227, 245); ///< Code in the text of a popover.
inline constexpr QColor codeFill = white(0.07F);

inline constexpr QColor panelFill = srgb8(27, 30, 39); ///< The panel under the label.
inline constexpr QColor panelStroke = white(0.1F);
inline constexpr QColor divider = white(0.09F);
/// Behind the label's numbers on a bar of unknown colour.
inline constexpr QColor plate = srgb8(20, 23, 31, 0.92F);
inline constexpr QColor plateStroke = white(0.1F);

inline constexpr QColor tabBar = white(0.03F); ///< Behind the tabs of a window.
inline constexpr QColor tabBarLine = white(0.07F);
inline constexpr QColor chosenTab = lightBlue(0.16F);
inline constexpr QColor chosenTabText = srgb8(125, 190, 255);
inline constexpr QColor switchOn = srgb8(47, 134, 224);
inline constexpr QColor switchOff = white(0.16F);
inline constexpr QColor switchStroke = white(0.14F);

// These ten identify a framework of AI workloads.
inline constexpr QColor ollama = srgb(0.36F, 0.78F, 0.95F);
inline constexpr QColor mlx = srgb(1.0F, 0.62F, 0.78F);
inline constexpr QColor llamaCpp = srgb(0.95F, 0.65F, 0.30F);
inline constexpr QColor lmStudio = srgb(0.55F, 0.85F, 0.50F);
inline constexpr QColor koboldCpp = srgb(0.85F, 0.55F, 0.95F);
inline constexpr QColor whisperCpp = srgb(0.75F, 0.78F, 0.85F);
inline constexpr QColor vllm = srgb(1.0F, 0.45F, 0.45F);
inline constexpr QColor comfyUI = srgb(0.50F, 0.60F, 1.0F);
inline constexpr QColor sdWebUI = srgb(1.0F, 0.85F, 0.40F);
inline constexpr QColor transformers = srgb(0.95F, 0.55F, 0.85F);

/// Opacity of what stands for an absent value, to distinguish it from a true zero.
inline constexpr double absentOpacity = 0.65;

/// Opacity of a disabled control's content.
inline constexpr double disabledOpacity = 0.4;

/// `color` at `opacity` times its own.
QColor withOpacity(const QColor &color, double opacity);

/// Background of the dashboard and of the other windows, corner to corner.
QLinearGradient windowGradient(const QSizeF &size);

/// On a Mac the system's font. Elsewhere Inter where it is installed, its variable form first; else
/// the system's interface font. Sizes are pixels at scale 1. All fonts are for the main thread.
QFont systemFont(double pixelSize, QFont::Weight weight = QFont::Normal);

/// The same font with round ends, where there is one.
QFont roundedFont(double pixelSize, QFont::Weight weight = QFont::Normal);

QFont monospacedFont(double pixelSize);

} // namespace Theme

} // namespace corvane
