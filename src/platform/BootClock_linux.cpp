#include "platform/BootClock.h"

#include <time.h>

namespace corvane {

double secondsSinceBoot()
{
    timespec time = {};
    clock_gettime(CLOCK_BOOTTIME, &time); // CLOCK_MONOTONIC stands still in sleep.
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

} // namespace corvane
