#include "sampling/SystemMetrics.h"

#include "sampling/ReferenceDate.h"

namespace corvane {

const SystemMetrics &SystemMetrics::placeholder()
{
    static const SystemMetrics sample{.timestamp = secondsSince2001()};
    return sample;
}

} // namespace corvane
