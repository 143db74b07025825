#pragma once

#include <QColor>
#include <QString>

#include <optional>

namespace corvane {

// What the system's own programs look like. Absent, or an empty name: the program has a look of its
// own on this system. Any thread.

/// Of explanatory text on a dark window.
std::optional<QColor> systemSecondaryColor();

/// The families of the system's font, plain and with round ends.
QString systemFontFamily();
QString systemRoundedFamily();

} // namespace corvane
