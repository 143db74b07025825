#pragma once

#include <QByteArray>
#include <QImage>

#include <functional>

namespace corvane {

/// An icon in a Mac's .icns format, with every size that the system asks for, from 16 to 1024
/// pixels. `picture` paints the icon in a square of so many pixels.
QByteArray iconFile(const std::function<QImage(int pixels)> &picture);

} // namespace corvane
