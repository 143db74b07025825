#include "records/SystemMetrics.h"

#include "records/ReferenceDate.h"

namespace corvane {

const SystemMetrics &SystemMetrics::placeholder()
{
    static const SystemMetrics sample{.timestamp = secondsSince2001()};
    return sample;
}

} // namespace corvane
