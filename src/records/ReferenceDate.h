#pragma once

#include <QDateTime>

namespace corvane {

/// The wall clock as the records keep it: seconds since 2001-01-01 00:00 UTC, with fraction.
double secondsSince2001();

/// The same instant as a local date, for showing; the fraction is cut to milliseconds. Invalid for
/// a value that no clock has: not a number, or some 300,000 years away.
QDateTime localDateTime(double secondsSince2001);

} // namespace corvane
