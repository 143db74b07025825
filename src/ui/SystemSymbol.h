#pragma once

#include <string>

namespace corvane {

/// Of the strokes, as of a font's.
enum class SymbolWeight { light, medium, semibold, bold };

/// Draws the system's symbol of that name into an empty picture, centred and as large as fits. A
/// pixel is four bytes, the last of which is its opacity; the top row comes first. Returns false
/// and draws nothing if the system has no such symbol. Main thread.
bool drawSystemSymbol(const std::string &name, SymbolWeight weight, unsigned char *pixels,
                      int width, int height);

} // namespace corvane
