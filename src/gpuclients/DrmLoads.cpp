#include "gpuclients/DrmLoads.h"

#include <algorithm>

namespace corvane {

namespace {

constexpr double leastSeconds = 0.5; ///< Two surveys may overlap; shorter times tell nothing.
constexpr double secondsKept = 60;

double share(double busy, double of, std::uint64_t capacity)
{
    return of > 0 ? std::clamp(busy / of / double(capacity), 0.0, 1.0) : 0;
}

} // namespace

std::map<std::string, double> DrmLoads::add(const DrmClient &client, double now)
{
    const auto [place, isNew] = m_clients.try_emplace({client.address, client.id});
    Entry &entry = place->second;
    const double elapsed = now - entry.seconds;
    if (!isNew && elapsed < leastSeconds)
        return entry.shares;

    std::map<std::string, double> shares;
    for (const DrmEngine &engine : client.engines) {
        if (engine.share)
            shares[engine.name] = *engine.share;
        if (!engine.busy)
            continue;
        const auto [counted, isFirst] = entry.counters.try_emplace(engine.name);
        Counter &last = counted->second;
        // A counter that stepped back goes on from its larger value.
        const std::uint64_t busy = std::max(*engine.busy, last.busy);
        const std::uint64_t total = std::max(engine.total.value_or(0), last.total);
        // A class without work has no line in some drivers: it begins at 0, unless the client is
        // new.
        if (!isNew && (!isFirst || !engine.total)) {
            const auto nanoseconds = elapsed * 1e9;
            const double of = engine.total ? double(total - last.total) : nanoseconds;
            shares[engine.name] = share(double(busy - last.busy), of, engine.capacity);
        }
        last = {busy, total};
    }
    entry.seconds = now;
    entry.shares = shares;
    return shares;
}

void DrmLoads::forgetOld(double now)
{
    std::erase_if(m_clients,
                  [now](const auto &client) { return now - client.second.seconds > secondsKept; });
}

} // namespace corvane
