#pragma once

#include <QColor>
#include <QFont>
#include <QLinearGradient>

namespace corvane {

/// The palette and the fonts of every view. Colours are sRGB, made once and shared; the five unit
/// colours identify their quantity everywhere. Main thread.
namespace Theme {

const QColor &cpu();
const QColor &gpu();
const QColor &ane();
const QColor &power();
const QColor &memory();

const QColor &textPrimary();   ///< Titles, names, values.
const QColor &textSecondary(); ///< Explanatory text.
const QColor &textTertiary();  ///< The info icon and faint captions.
const QColor &critical();      ///< Critical pressure, failures.
const QColor &track();         ///< What a bar fills.
const QColor &tag();           ///< Behind a count.
const QColor &scrollThumb();
const QColor &popoverFill();
const QColor &popoverStroke();
const QColor &codeText(); ///< Code within a popover's text.
const QColor &codeFill();

const QColor &cardFill();
const QColor &cardStroke(); ///< The hairline around every card.
const QColor &panelFill();  ///< The panel under the label.
const QColor &panelStroke();
const QColor &divider();
const QColor &plate(); ///< Behind numbers that stand on a foreign bar.
const QColor &plateStroke();
const QColor &pillFill(); ///< Of the values under a chart's cursor.
const QColor &pillStroke();
const QColor &chartGrid();
const QColor &chartCursor();
const QColor &timeLabel();
const QColor &timeLabelTag(); ///< Keeps a time label readable on a chart's fill.
const QColor &focusRing();

const QColor &tabBar(); ///< Behind the tabs of a window.
const QColor &tabBarLine();
const QColor &chosenTab();
const QColor &chosenTabText();
const QColor &switchOn();
const QColor &switchOff();
const QColor &switchStroke();

/// Of what a control shows that cannot be used.
constexpr double disabledOpacity = 0.4;

/// `colour` at `opacity` times its own.
QColor withOpacity(const QColor &colour, double opacity);

/// Background of the dashboard and of the other windows, corner to corner.
QLinearGradient windowGradient(const QSizeF &size);

/// The system's interface font; Inter where it is installed. Sizes are pixels at scale 1.
QFont systemFont(double pixelSize, QFont::Weight weight = QFont::Normal);

QFont monospacedFont(double pixelSize);

} // namespace Theme

} // namespace corvane
