#pragma once

#include "processes/ArgumentFacts.h"
#include "threads/Mutex.h"

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <unordered_set>

namespace corvane {

/// Remembers the facts of processes, also empty ones, so that the arguments of each are read once.
/// Safe from any thread.
class FactsCache {
public:
    /// Absent for a process that is not remembered, also when an earlier one of its number is.
    std::optional<ArgumentFacts> find(const ProcessIdentity &process) const;

    /// Later facts replace earlier ones of that number.
    void remember(const ProcessIdentity &process, const ArgumentFacts &facts);

    /// Forgets all processes but those with these numbers.
    void keepOnly(const std::unordered_set<std::int64_t> &pids);

private:
    struct Entry {
        std::uint64_t startTime = 0;
        ArgumentFacts facts = {};
    };

    mutable Mutex m_mutex;
    std::unordered_map<std::int64_t, Entry> m_byPid GUARDED_BY(m_mutex);
};

} // namespace corvane
