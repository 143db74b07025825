#pragma once

#include <QByteArray>
#include <QImage>

#include <functional>

namespace corvane {

/// An icon in a Mac's .icns format, in all sizes that the system uses, from 16 to 1024 pixels.
/// `picture` paints the icon in a square of that many pixels.
QByteArray iconFile(const std::function<QImage(int pixels)> &picture);

} // namespace corvane
