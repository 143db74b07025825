#include "gpuclients/DrmLoads.h"
#include "gpuclients/KfdText.h"

#include <cstdint>
#include <string_view>

using namespace corvane;

namespace {

void check(const DrmClient &client)
{
    if (client.address.empty() || client.address.size() > 64 || client.id.size() > 64)
        __builtin_trap();
    if (client.engines.size() > 64 || client.regions.size() > 64)
        __builtin_trap();
    for (const DrmEngine &engine : client.engines) {
        if (engine.capacity == 0 || !(engine.share.value_or(0) <= 1))
            __builtin_trap();
    }
    if (drmClientBytes(client, false).value_or(0) > drmClientBytes(client, true).value_or(0))
        __builtin_trap();
}

} // namespace

/// Any two texts as what the kernel tells of a descriptor, one after the other, and as AMD's
/// topology.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    const std::size_t half = std::min(text.find('\0'), size);
    DrmLoads loads;
    double now = 1000;
    for (const std::string_view part : {text.substr(0, half), text.substr(half)}) {
        const auto client = parseDrmClient(part);
        if (!client)
            continue;
        check(*client);
        for (const auto &[engine, share] : loads.add(*client, now)) {
            if (!(share >= 0 && share <= 1))
                __builtin_trap();
        }
        now += 3;
    }
    if (kfdAddress(text).value_or("").size() > 32)
        __builtin_trap();
    return 0;
}
