#pragma once

#include <QImage>

namespace corvane {

/// The program's icon in a square of that many pixels: the logo on its dark background, with the
/// margin of a Mac's icons.
QImage appIcon(int pixels);

} // namespace corvane
