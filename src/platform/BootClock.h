#pragma once

namespace corvane {

/// Seconds since the machine was started, sleep included, so that what a counter gained during
/// sleep is divided by the whole time. Never runs backwards. Any thread.
double secondsSinceBoot();

} // namespace corvane
