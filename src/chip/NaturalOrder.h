#pragma once

#include <string_view>

namespace corvane {

/// Whether `left` comes before `right` in a list that people read: runs of digits count by their
/// numeric value ("P2" before "P10"), letters without regard to case. Names that differ in case or
/// leading zeros alone are equal. The same in every locale.
bool naturallyLess(std::string_view left, std::string_view right);

} // namespace corvane
