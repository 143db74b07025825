#include "history/PendingRecords.h"

#include <utility>

namespace corvane {

void PendingRecords::deliver(std::vector<PersistedMetric> records)
{
    const MutexLock lock(m_mutex);
    m_records = std::move(records);
    m_delivered.notifyAll();
}

std::optional<std::vector<PersistedMetric>> PendingRecords::take(std::chrono::milliseconds patience)
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    MutexLock lock(m_mutex);
    while (!m_records) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            break;
        m_delivered.waitFor(lock, left);
    }
    return std::exchange(m_records, std::nullopt);
}

} // namespace corvane
