#pragma once

#include <QString>

namespace corvane {

/// The one home of how quantities become text. The point is the decimal mark in every locale, and
/// rounding is to the nearest, of a number between two to the even one.

QString percentText(double percent);                      ///< "71%"
QString spacedPercentText(double percent);                ///< "71 %"
QString wattsText(double watts, int fractionDigits);      ///< "16.69 W"
QString tightWattsText(double watts, int fractionDigits); ///< "49.7W"
QString celsiusText(double celsius);                      ///< "74°C"

/// `number` with so many fraction digits.
QString fixedText(double number, int fractionDigits);

} // namespace corvane
