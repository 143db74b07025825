#include "processes/ArgumentCache.h"

namespace corvane {

std::optional<QStringList> ArgumentCache::find(std::int64_t pid) const
{
    const MutexLock lock(m_mutex);
    const auto found = m_byPid.find(pid);
    if (found == m_byPid.end())
        return std::nullopt;
    return found->second;
}

void ArgumentCache::remember(std::int64_t pid, const QStringList &arguments)
{
    const MutexLock lock(m_mutex);
    m_byPid.insert_or_assign(pid, arguments);
}

void ArgumentCache::keepOnly(const std::unordered_set<std::int64_t> &pids)
{
    const MutexLock lock(m_mutex);
    std::erase_if(m_byPid, [&pids](const auto &entry) { return !pids.contains(entry.first); });
}

} // namespace corvane
