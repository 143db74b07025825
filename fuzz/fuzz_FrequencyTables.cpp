#include "chip/FrequencyTables.h"

#include <cmath>
#include <cstdint>
#include <cstdlib>

/// Any bytes as a voltage-state table: at most one frequency a record, each a clock.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace corvane::IORegistryReader;
    const auto table = std::as_bytes(std::span(data, size));
    const auto literal = parseFrequencies(table);
    const auto scaled = parseScaledFrequencies(table);
    if (literal.size() > size / 8 || scaled.size() != literal.size())
        std::abort();
    for (std::size_t i = 0; i < scaled.size(); ++i) {
        if (!(literal[i] > 0) || !(scaled[i] >= literal[i]) || !std::isfinite(scaled[i]))
            std::abort();
    }
    return 0;
}
