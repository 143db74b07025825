#include "records/ReferenceDate.h"

#include <chrono>
#include <cmath>

namespace corvane {

namespace {

constexpr double unixSecondsAt2001 = 978'307'200;

} // namespace

double secondsSince2001()
{
    const auto sinceUnixEpoch = std::chrono::system_clock::now().time_since_epoch();
    return std::chrono::duration<double>(sinceUnixEpoch).count() - unixSecondsAt2001;
}

QDateTime localDateTime(double secondsSince2001)
{
    // A history file may hold any number; a cast of one beyond 64 bits would be undefined.
    constexpr double latest = 1e13;
    if (!(std::abs(secondsSince2001) <= latest))
        return {};
    const double milliseconds = (secondsSince2001 + unixSecondsAt2001) * 1000;
    return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::floor(milliseconds)));
}

} // namespace corvane
