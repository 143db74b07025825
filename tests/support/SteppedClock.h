#pragma once

namespace corvane::test {

/// The monotonic clock of a test that lists support/SteppedClock.cpp among its sources, in place of
/// platform/BootClock. It moves only when the test calls `pass`. Any thread.
namespace SteppedClock {

void pass(double seconds);

} // namespace SteppedClock

} // namespace corvane::test
