#pragma once

namespace corvane::test {

/// The machine's clock in a test that has support/SteppedClock.cpp among its sources, which takes
/// the place of platform/BootClock: it stands still until a test moves it. Any thread.
namespace SteppedClock {

void pass(double seconds);

} // namespace SteppedClock

} // namespace corvane::test
