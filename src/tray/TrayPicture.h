#pragma once

#include "ui/MetricText.h"

#include <QIcon>
#include <QImage>

#include <array>

namespace corvane {

/// Where a square item stands among the label's three; shown by a mark below its number, so that
/// the items can be told apart without colour.
enum class LabelPosition { left, middle, right };

/// One number of the label in a square of so many pixels: on a dark plate of its own, readable on
/// light and dark bars alike.
QImage trayPicture(const LabelNumber &number, LabelPosition position, int pixels);

/// The same in every size from 16 to 64 pixels that trays ask for.
QIcon trayIcon(const LabelNumber &number, LabelPosition position);

/// All three numbers side by side on one plate so many pixels high. As wide as two digits each
/// need, so that it changes its width only where a number has three.
QImage widePicture(const LabelNumbers &numbers, int pixels);

/// Heights of the pictures that are offered to trays.
inline constexpr std::array trayPictureSizes{16, 22, 24, 32, 44, 48, 64};

} // namespace corvane
