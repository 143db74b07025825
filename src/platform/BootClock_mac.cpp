#include "platform/BootClock.h"

#include <time.h>

namespace corvane {

double secondsSinceBoot()
{
    timespec time = {};
    // Runs on during sleep, and unlike CLOCK_MONOTONIC does not change when the wall clock is set.
    clock_gettime(CLOCK_MONOTONIC_RAW, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace corvane
