#include "cards/NumberText.h"

#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// Qt rounds a number that lies exactly halfway between two texts away from zero; C and its heirs,
/// whose patterns every monitor uses, round it to the even digit. Halfway are the numbers with just
/// one more binary digit than decimal ones are kept.
bool roundsToEvenBelow(double number, int fractionDigits)
{
    const double magnitude = std::abs(number);
    const bool halfway = std::fmod(std::ldexp(magnitude, fractionDigits + 1), 2) == 1;
    const double below = std::floor(magnitude * std::pow(10, fractionDigits));
    return halfway && std::fmod(below, 2) == 0;
}

} // namespace

QString fixedText(double number, int fractionDigits)
{
    if (roundsToEvenBelow(number, fractionDigits))
        number = std::nextafter(number, 0);
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
