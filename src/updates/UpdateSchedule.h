#pragma once

#include <optional>

namespace corvane {

inline constexpr double updateCheckInterval = 24 * 60 * 60; ///< Seconds.

/// Seconds until the next check, from the dates of now and of the last check (absent: none) by the
/// wall clock. A date in the future was written while the clock was wrong and counts as none. 0:
/// the check is due.
double secondsUntilUpdateCheck(double now, std::optional<double> last);

} // namespace corvane
