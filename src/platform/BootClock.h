#pragma once

namespace corvane {

/// Seconds since the machine was started, sleep included, so that what a counter gathered while the
/// machine slept is divided by all of that time. Never runs backwards. Any thread.
double secondsSinceBoot();

} // namespace corvane
