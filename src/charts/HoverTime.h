#pragma once

#include <QString>

namespace corvane::HoverTime {

/// The time of a hovered sample, given in seconds since 2001, on the 24-hour clock in every locale,
/// such as "14:05:09"; empty if no calendar has such a date.
QString string(double date);

/// The time of a hovered minute within a day, such as "Mon 14:05".
QString minute(double date);

} // namespace corvane::HoverTime
