#pragma once

#include <string_view>

namespace corvane {

/// Whether `left` stands before `right` in a list that people read: runs of digits count by their
/// numeric value ("P2" before "P10"), letters without regard to case. Names that differ in case or
/// leading zeros alone are equal. The same in every locale. Any thread.
bool naturallyLess(std::string_view left, std::string_view right);

} // namespace corvane
