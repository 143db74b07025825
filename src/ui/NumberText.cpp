#include "ui/NumberText.h"

#include <cmath>

namespace corvane {

using namespace Qt::StringLiterals;

namespace {

QString absentText()
{
    return u"\u2013"_s;
}

} // namespace

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

QString percentText(std::optional<double> percent)
{
    return percent ? fixedText(*percent, 0) + u'%' : absentText();
}

QString spacedPercentText(std::optional<double> percent)
{
    return percent ? fixedText(*percent, 0) + u" %"_s : absentText();
}

QString wattsText(std::optional<double> watts, int fractionDigits)
{
    return watts ? fixedText(*watts, fractionDigits) + u" W"_s : absentText();
}

QString tightWattsText(std::optional<double> watts, int fractionDigits)
{
    return watts ? fixedText(*watts, fractionDigits) + u'W' : absentText();
}

QString celsiusText(double celsius)
{
    return fixedText(celsius, 0) + u"\u00B0C"_s;
}

QString gigahertzText(double megahertz)
{
    return fixedText(megahertz / 1000, 2) + u" GHz"_s;
}

QString frequencyText(double megahertz)
{
    if (megahertz >= 1000)
        return gigahertzText(megahertz);
    return fixedText(megahertz, 0) + u" MHz"_s;
}

} // namespace corvane
