#pragma once

#include "threads/Mutex.h"

#include <QStringList>

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace corvane {

/// Remembers the arguments of processes, also an empty list, so that each is read once. Safe from
/// any thread.
class ArgumentCache {
public:
    /// Absent for a process that is not remembered.
    std::optional<QStringList> find(std::int64_t pid) const;

    /// A later list replaces an earlier one.
    void remember(std::int64_t pid, const QStringList &arguments);

    /// Forgets all processes but these.
    void keepOnly(const std::unordered_set<std::int64_t> &pids);

private:
    mutable Mutex m_mutex;
    std::unordered_map<std::int64_t, QStringList> m_byPid GUARDED_BY(m_mutex);
};

} // namespace corvane
