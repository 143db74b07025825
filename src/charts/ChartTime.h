#pragma once

#include "charts/SparklineData.h"

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <array>

namespace corvane {

/// The local date of an instant in seconds since 2001; invalid if no calendar has such a date.
QDateTime chartTime(double secondsSince2001);

/// Hour and minutes in the hour cycle of the locale: a two-digit hour without an AM or PM marker,
/// such as "14:05" or "02:05". Empty if no calendar has such a date.
QString timeLabel(double secondsSince2001, const QLocale &locale);

/// Labels of the first, the middle and the last instant.
std::array<QString, 3> timeLabels(const ChartRange &time, const QLocale &locale);

/// The same with the weekday before each where a midnight lies between the first and the last.
std::array<QString, 3> timeLabelsOfDays(const ChartRange &time, const QLocale &locale);

} // namespace corvane
