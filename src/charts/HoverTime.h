#pragma once

#include <QString>

namespace corvane::HoverTime {

/// The time of a hovered sample on the 24-hour clock, such as "14:05:09", in every locale; empty
/// for a date that no clock shows. Argument: seconds since 2001.
QString string(double date);

} // namespace corvane::HoverTime
