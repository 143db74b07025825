#pragma once

#include <QString>

namespace corvane {

/// How quantities become text. The decimal mark is a point in every locale; numbers are rounded to
/// the nearest, ties to even.

QString percentText(double percent);                      ///< "71%"
QString spacedPercentText(double percent);                ///< "71 %"
QString wattsText(double watts, int fractionDigits);      ///< "16.69 W"
QString tightWattsText(double watts, int fractionDigits); ///< "49.7W"
QString celsiusText(double celsius);                      ///< "74°C"

/// `number` with that many fraction digits.
QString fixedText(double number, int fractionDigits);

} // namespace corvane
