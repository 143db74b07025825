#include "records/SystemMetrics.h"

#include "records/ReferenceDate.h"

namespace corvane {

const SystemMetrics &SystemMetrics::placeholder()
{
    static const SystemMetrics sample{.timestamp = secondsSince2001()};
    return sample;
}

const MachineCoverage &coverageOf(const SystemMetrics &sample)
{
    static const MachineCoverage whole;
    return sample.chip && sample.chip->coverage ? *sample.chip->coverage : whole;
}

} // namespace corvane
