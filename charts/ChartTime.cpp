#include "charts/ChartTime.h"

#include "sampling/ReferenceDate.h"

#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// How a locale writes hour and minutes.
struct ClockStyle {
    bool twelveHours = false;
    QString separator = u":"_s;
};

ClockStyle clockStyle(const QLocale &locale)
{
    const QString pattern = locale.timeFormat(QLocale::ShortFormat);
    ClockStyle style;
    // An hour counts to twelve where the pattern has a marker (a, ap, A, AP) outside its quotes.
    bool quoted = false;
    for (const QChar character : pattern) {
        if (character == u'\'')
            quoted = !quoted;
        else if (!quoted && character.toLower() == u'a')
            style.twelveHours = true;
    }
    const qsizetype hour = pattern.lastIndexOf(u'h', -1, Qt::CaseInsensitive);
    const qsizetype minute = pattern.indexOf(u'm');
    if (hour >= 0 && minute > hour)
        style.separator = pattern.mid(hour + 1, minute - hour - 1).remove(u'\'');
    return style;
}

QString twoDigits(int number, const QLocale &locale)
{
    return locale.toString(number).rightJustified(2, locale.zeroDigit().at(0));
}

} // namespace

QDateTime chartTime(double secondsSince2001)
{
    constexpr double tenThousandYears = 3.2e11;
    if (!(std::abs(secondsSince2001) < tenThousandYears))
        return {};
    return localDateTime(secondsSince2001);
}

QString timeLabel(double secondsSince2001, const QLocale &locale)
{
    const QTime time = chartTime(secondsSince2001).time();
    if (!time.isValid())
        return {};
    const ClockStyle style = clockStyle(locale);
    const int hour = style.twelveHours ? (time.hour() + 11) % 12 + 1 : time.hour();
    return twoDigits(hour, locale) + style.separator + twoDigits(time.minute(), locale);
}

std::array<QString, 3> timeLabels(const ChartRange &time, const QLocale &locale)
{
    const double middle = (time.lower + time.upper) * 0.5;
    return {timeLabel(time.lower, locale), timeLabel(middle, locale),
            timeLabel(time.upper, locale)};
}

} // namespace corvane
