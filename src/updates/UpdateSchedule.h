#pragma once

#include <optional>

namespace corvane {

inline constexpr double updateCheckInterval = 24 * 60 * 60; ///< Seconds.

/// Seconds from `now` to the next check, by the wall clock's date of the last one. A date in the
/// future was written while the clock was wrong and counts as none: then a check is due.
double secondsUntilUpdateCheck(double now, std::optional<double> last);

} // namespace corvane
