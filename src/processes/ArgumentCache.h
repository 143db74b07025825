#pragma once

#include <QStringList>

#include <cstdint>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace corvane {

/// Remembers the arguments of processes, an empty list too, so that each is read once. Safe from
/// any thread.
class ArgumentCache {
public:
    std::optional<QStringList> find(std::int64_t pid) const;

    /// A later list takes an earlier one's place.
    void remember(std::int64_t pid, const QStringList &arguments);

    /// Forgets all processes but these.
    void keepOnly(const std::unordered_set<std::int64_t> &pids);

private:
    mutable std::mutex m_mutex;
    std::unordered_map<std::int64_t, QStringList> m_byPid; ///< Guarded by m_mutex.
};

} // namespace corvane
