#pragma once

#include "history/PersistedMetric.h"
#include "threads/Mutex.h"

#include <chrono>
#include <optional>
#include <vector>

namespace corvane {

/// The records of a file that the disk has not delivered yet. Shared by the thread that reads them
/// and the one that waits for them; safe from both.
class PendingRecords {
public:
    void deliver(std::vector<PersistedMetric> records);

    /// The delivered records, once; absent if they do not arrive within that time.
    std::optional<std::vector<PersistedMetric>> take(std::chrono::milliseconds patience);

private:
    Mutex m_mutex;
    Condition m_delivered;
    std::optional<std::vector<PersistedMetric>> m_records GUARDED_BY(m_mutex);
};

} // namespace corvane
