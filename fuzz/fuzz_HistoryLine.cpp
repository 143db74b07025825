#include "history/PersistedMetric.h"

#include <cstdint>

using namespace corvane;

namespace {

bool same(const PersistedMetric &a, const PersistedMetric &b)
{
    return a.t == b.t && a.memTotal == b.memTotal && a.memUsed == b.memUsed && a.memPct == b.memPct
        && a.cpuPct == b.cpuPct && a.gpuPct == b.gpuPct && a.cpuW == b.cpuW && a.gpuW == b.gpuW
        && a.aneW == b.aneW;
}

} // namespace

/// Any line is either refused or read as a record that can be written and read back unchanged.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray line(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const auto metric = PersistedMetric::fromJson(line);
    if (!metric)
        return 0;
    const auto written = metric->toJson();
    const auto again = written ? PersistedMetric::fromJson(*written) : std::nullopt;
    if (!again || !same(*metric, *again))
        __builtin_trap();
    return 0;
}
