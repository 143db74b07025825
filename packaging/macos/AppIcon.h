#pragma once

#include <QImage>

namespace corvane {

/// The program's icon in a square of so many pixels: the logo on its dark ground, with the margin
/// that icons have on a Mac.
QImage appIcon(int pixels);

} // namespace corvane
