#include "cpu/CPUCoreSampler.h"
#include "cpu/ProcStat.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

using namespace corvane;

/// Readings that follow each other, parted by NULs.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    std::string_view rest(reinterpret_cast<const char *>(data), size);
    CPUTickCounters counters;
    CPUCoreSampler sampler([&] {
        const std::string_view reading = rest.substr(0, rest.find('\0'));
        rest.remove_prefix(reading.size() == rest.size() ? reading.size() : reading.size() + 1);
        return counters.update(reading);
    });
    std::size_t processors = 0;
    while (!rest.empty()) {
        const auto fractions = sampler.sample();
        if (!fractions.empty() && fractions.size() < processors)
            __builtin_trap(); // An offline CPU keeps its place.
        processors = std::max(processors, fractions.size());
        for (const double fraction : fractions) {
            if (!(fraction >= 0 && fraction <= 1))
                __builtin_trap();
        }
    }
    return 0;
}
