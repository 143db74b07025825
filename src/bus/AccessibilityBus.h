#pragma once

#include <chrono>

namespace corvane {

/// Hides the bus of accessibility from the libraries of this process when it does not answer
/// within that time: they connect to it on the main thread. To be called before the QApplication
/// on the main thread, which waits for little more than that time, and only where this user's
/// session has accessibility turned on; the bus of the session has to answer.
///
/// A bus that hangs later still holds the main thread up.
void disableHangingAccessibilityBus(std::chrono::milliseconds timeout);

} // namespace corvane
