#include "charts/ChartTime.h"

#include "records/ReferenceDate.h"

#include <cmath>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

/// How a locale writes hour and minutes.
struct ClockStyle {
    bool twelveHours = false;
    QString separator = u":"_s;
};

/// From the locale's short pattern, such as "h:mm AP" or "HH 'h' mm": hours go to twelve if there
/// is an AM or PM marker, and quoted letters are text.
ClockStyle clockStyle(const QLocale &locale)
{
    const QString pattern = locale.timeFormat(QLocale::ShortFormat);
    ClockStyle style;
    bool quoted = false;
    qsizetype hourEnd = -1;
    qsizetype minuteStart = -1;
    for (qsizetype i = 0; i < pattern.size(); ++i) {
        const QChar letter = pattern[i].toLower();
        if (letter == u'\'')
            quoted = !quoted;
        else if (!quoted && letter == u'a')
            style.twelveHours = true;
        else if (!quoted && letter == u'h')
            hourEnd = i + 1;
        else if (!quoted && letter == u'm' && minuteStart < 0)
            minuteStart = i;
    }
    if (hourEnd > 0 && minuteStart > hourEnd)
        style.separator = pattern.mid(hourEnd, minuteStart - hourEnd).remove(u'\'');
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
    return {timeLabel(time.lower, locale), timeLabel(time.middle(), locale),
            timeLabel(time.upper, locale)};
}

std::array<QString, 3> timeLabelsOfDays(const ChartRange &time, const QLocale &locale)
{
    std::array<QString, 3> labels = timeLabels(time, locale);
    if (chartTime(time.lower).date() == chartTime(time.upper).date())
        return labels;
    const std::array<double, 3> instants{time.lower, time.middle(), time.upper};
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const int day = chartTime(instants[i]).date().dayOfWeek();
        if (day > 0)
            labels[i].prepend(locale.dayName(day, QLocale::ShortFormat) + u' ');
    }
    return labels;
}

} // namespace corvane
