#include "gpuclients/GPUShares.h"

#include <algorithm>
#include <set>

namespace corvane {

namespace {

std::optional<double> knownLoad(const GPUProcessUse &use)
{
    return use.isUnused ? use.busyFraction.value_or(0) : use.busyFraction;
}

} // namespace

GPUShares::GPUShares(const std::vector<GPUUse> &uses)
{
    for (const GPUUse &use : uses)
        m_byPid[use.use.pid].push_back(use);
}

GPUShare GPUShares::of(const std::vector<std::int32_t> &pids) const
{
    GPUShare share;
    std::map<std::string, double> fractions; // By device.
    std::set<std::string> hidden;            // Devices whose load is larger than the sum.
    for (const std::int32_t pid : pids) {
        const auto found = m_byPid.find(pid);
        if (found == m_byPid.end())
            continue;
        for (const GPUUse &use : found->second) {
            if (use.use.bytes)
                share.bytes = share.bytes.value_or(0) + *use.use.bytes;
            if (use.use.hidesLoad)
                hidden.insert(use.device);
            if (const auto fraction = knownLoad(use.use))
                fractions[use.device] += *fraction;
        }
    }
    std::erase_if(fractions, [&hidden](const auto &each) { return hidden.contains(each.first); });
    double sum = 0;
    for (const auto &[device, fraction] : fractions)
        sum += std::min(fraction, 1.0);
    if (!fractions.empty())
        share.fraction = sum / double(fractions.size());
    return share;
}

std::vector<std::int32_t> GPUShares::holding(std::uint64_t bytes) const
{
    std::vector<std::int32_t> pids;
    for (const auto &[pid, uses] : m_byPid) {
        if (of({pid}).bytes.value_or(0) >= bytes)
            pids.push_back(pid);
    }
    return pids;
}

std::vector<GPUHolders> gpuHolders(const std::vector<GPUUse> &uses,
                                   const std::unordered_set<std::int32_t> &ai,
                                   const ProcessName &name)
{
    std::vector<GPUHolders> holders;
    std::vector<std::int32_t> largest; // Of the holders, in their order.
    for (const GPUUse &use : uses) {
        if (!use.use.bytes)
            continue;
        const QString device = QString::fromStdString(use.device);
        auto holder = std::ranges::find(holders, device, &GPUHolders::device);
        if (holder == holders.end()) {
            holder = holders.insert(holders.end(), {.device = device});
            largest.push_back(0);
        }
        holder->knownBytes += *use.use.bytes;
        if (ai.contains(use.use.pid))
            holder->aiBytes += *use.use.bytes;
        if (*use.use.bytes > holder->largestBytes) {
            holder->largestBytes = *use.use.bytes;
            largest[static_cast<std::size_t>(holder - holders.begin())] = use.use.pid;
        }
    }
    for (std::size_t place = 0; place < holders.size(); ++place) {
        if (holders[place].largestBytes > 0)
            holders[place].largestName = name(largest[place]);
    }
    return holders;
}

} // namespace corvane
