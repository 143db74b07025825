#include "processes/FactsCache.h"

namespace corvane {

std::optional<ArgumentFacts> FactsCache::find(const ProcessIdentity &process) const
{
    const MutexLock lock(m_mutex);
    const auto found = m_byPid.find(process.pid);
    if (found == m_byPid.end() || found->second.startTime != process.startTime)
        return std::nullopt;
    return found->second.facts;
}

void FactsCache::remember(const ProcessIdentity &process, const ArgumentFacts &facts)
{
    const MutexLock lock(m_mutex);
    m_byPid.insert_or_assign(process.pid, Entry{process.startTime, facts});
}

void FactsCache::keepOnly(const std::unordered_set<std::int64_t> &pids)
{
    const MutexLock lock(m_mutex);
    std::erase_if(m_byPid, [&pids](const auto &entry) { return !pids.contains(entry.first); });
}

} // namespace corvane
