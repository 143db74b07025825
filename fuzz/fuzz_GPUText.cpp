#include "gpu/GPUSleepGate.h"
#include "gpu/GPUText.h"
#include "platform/Plausible.h"

#include <cstdint>
#include <cstdlib>

using namespace corvane;
using namespace std::string_view_literals;

namespace {

void expect(bool isSound)
{
    if (!isSound)
        std::abort();
}

void expectWithin(std::optional<double> value, double least, double greatest)
{
    expect(!value || (*value >= least && *value <= greatest));
}

} // namespace

/// Any bytes as the contents of each file of a GPU or a sensor, and as a folder's name.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    expectWithin(parseBusyPercent(text), 0, 1);
    expect(parseIdleTime(text) != std::uint64_t(0));
    expect(!isPCIAddress(text) || text.find_first_of("/\n\0"sv) == std::string_view::npos);
    expectWithin(presentLevelMHz(text), 1, highestMHz);
    expectWithin(parseClockMHz(text), 1, highestMHz);
    expectWithin(parseMicrowatts(text), 0, maxWatts);
    expect(clockStateName(presentLevelMHz(text)).ends_with(" MHz")
           == presentLevelMHz(text).has_value());
    expectWithin(gpuQuietSeconds("active\n", "auto\n", text), 3, 1e17);
    GPUSleepGate gate;
    const bool admitted = gate.admits(text);
    expect(!admitted || text.find("suspend") == std::string_view::npos);
    return 0;
}
