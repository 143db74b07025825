#pragma once

#include "ui/MetricText.h"

#include <QGuiApplication>
#include <QIcon>
#include <QImage>

#include <span>

namespace corvane {

/// The place of a square item among the label's. A mark below the number shows it, so that the
/// items can be distinguished without colour.
struct LabelPosition {
    std::size_t index = 0; ///< From the left.
    std::size_t count = 1;
};

/// One number of the label as a square of `pixels` a side, on a dark plate that makes it readable
/// on light and dark bars. Watts of three and more digits are shown without their unit.
QImage trayPicture(const LabelNumber &number, LabelPosition position, int pixels);

/// The same picture in the sizes of `trayPictureSizes`.
QIcon trayIcon(const LabelNumber &number, LabelPosition position);

/// All numbers side by side on one plate, `pixels` high. Each number has room for two digits,
/// so that the width changes only when a number has three.
QImage widePicture(const LabelNumbers &numbers, int pixels);

/// Heights in pixels of the pictures that are offered to trays, in ascending order. Where no screen
/// has more than one pixel a point, the largest are left out: each changed number is painted and
/// sent in all sizes. Main thread.
std::span<const int> trayPictureSizes(double devicePixelRatio = qGuiApp->devicePixelRatio());

} // namespace corvane
