#include "cards/NumberText.h"

namespace corvane {

using namespace Qt::StringLiterals;

QString fixedText(double number, int fractionDigits)
{
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
