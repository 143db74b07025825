#pragma once

#include <string>

namespace corvane {

/// Draws the shape of the system's own symbol of that name into an empty picture, as large as fits
/// and centred. A pixel is four bytes, the last one its opacity; rows go from the top. False, with
/// nothing drawn, where the system has no such symbol. Main thread.
bool drawSystemSymbol(const std::string &name, unsigned char *pixels, int width, int height);

} // namespace corvane
