#pragma once

#include <QString>

#include <optional>

namespace corvane {

/// How quantities become text. The decimal mark is a point in every locale; numbers are rounded to
/// the nearest, ties to even. An absent quantity is "–".

QString percentText(std::optional<double> percent);                      ///< "71%"
QString spacedPercentText(std::optional<double> percent);                ///< "71 %"
QString wattsText(std::optional<double> watts, int fractionDigits);      ///< "16.69 W"
QString tightWattsText(std::optional<double> watts, int fractionDigits); ///< "49.7W"
QString celsiusText(double celsius);                                     ///< "74°C"
QString frequencyText(double megahertz);                                 ///< "3.27 GHz", "996 MHz"
QString gigahertzText(double megahertz);                                 ///< "3.27 GHz", "1.00 GHz"

/// `number` with that many fraction digits.
QString fixedText(double number, int fractionDigits);

} // namespace corvane
