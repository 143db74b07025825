#include "drivers/APUMetrics.h"
#include "platform/Plausible.h"

#include <cstdint>
#include <cstdlib>

using namespace corvane;

namespace {

void expectWithin(std::optional<double> value, double least, double greatest)
{
    if (value && !(*value >= least && *value <= greatest))
        std::abort();
}

} // namespace

/// Any bytes as the measurements of an APU.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const auto metrics = parseAPUMetrics({reinterpret_cast<const char *>(data), size});
    if (!metrics)
        return 0;
    for (const auto watts :
         {metrics->packageWatts, metrics->coreWatts, metrics->graphicsWatts, metrics->npuWatts})
        expectWithin(watts, 0, maxWatts);
    expectWithin(metrics->npuFraction, 0, 1);
    expectWithin(metrics->npuMHz, 1, highestMHz);
    return 0;
}
