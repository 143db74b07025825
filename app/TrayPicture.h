#pragma once

#include "app/ReadOut.h"

#include <QIcon>
#include <QImage>

namespace corvane {

/// Where a square item stands among the label's three; shown by a mark below its number, so that
/// the items can be told apart without colour.
enum class LabelPosition { left, middle, right };

/// One number of the label in a square of so many pixels: on a dark plate of its own, readable on
/// light and dark bars alike.
QImage trayPicture(const LabelNumber &number, LabelPosition position, int pixels);

/// The same in every size from 16 to 64 pixels that trays ask for.
QIcon trayIcon(const LabelNumber &number, LabelPosition position);

} // namespace corvane
