#include "ui/NumberText.h"

#include <cmath>

namespace corvane {

using namespace Qt::StringLiterals;

QString fixedText(double number, int fractionDigits)
{
    // Qt rounds ties away from zero. It is a tie only if the product is exact, which the fused
    // multiplication shows.
    const double scale = std::pow(10.0, fractionDigits);
    const double steps = number * scale;
    const bool isTie =
        std::fma(number, scale, -steps) == 0 && std::abs(steps - std::trunc(steps)) == 0.5;
    if (isTie)
        number = std::nearbyint(steps) / scale;
    return QString::number(number, 'f', fractionDigits);
}

QString percentText(double percent)
{
    return fixedText(percent, 0) + u'%';
}

QString spacedPercentText(double percent)
{
    return fixedText(percent, 0) + u" %"_s;
}

QString wattsText(double watts, int fractionDigits)
{
    return fixedText(watts, fractionDigits) + u" W"_s;
}

QString tightWattsText(double watts, int fractionDigits)
{
    return fixedText(watts, fractionDigits) + u'W';
}

QString celsiusText(double celsius)
{
    return fixedText(celsius, 0) + u"\u00B0C"_s;
}

} // namespace corvane
