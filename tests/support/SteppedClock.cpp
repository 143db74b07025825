#include "support/SteppedClock.h"

#include "platform/BootClock.h"

#include <atomic>

namespace corvane {

namespace {

std::atomic<double> sinceBoot = 1000;

} // namespace

double secondsSinceBoot()
{
    return sinceBoot;
}

void test::SteppedClock::pass(double seconds)
{
    sinceBoot = sinceBoot + seconds;
}

} // namespace corvane
