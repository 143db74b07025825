#pragma once

#include "threads/Mutex.h"

#include <chrono>
#include <optional>
#include <utility>

namespace corvane {

/// What a file holds and the disk has not delivered yet. Shared by the thread that reads it and the
/// one that waits for it; safe from both.
template <typename Value>
class Pending {
public:
    void deliver(Value value)
    {
        const MutexLock lock(m_mutex);
        m_value = std::move(value);
        m_delivered.notifyAll();
    }

    /// The delivered value, once; absent if it does not arrive within that time.
    std::optional<Value> take(std::chrono::milliseconds patience)
    {
        const auto deadline = std::chrono::steady_clock::now() + patience;
        MutexLock lock(m_mutex);
        while (!m_value) {
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            if (left.count() <= 0)
                break;
            m_delivered.waitFor(lock, left);
        }
        return std::exchange(m_value, std::nullopt);
    }

private:
    Mutex m_mutex;
    Condition m_delivered;
    std::optional<Value> m_value GUARDED_BY(m_mutex);
};

} // namespace corvane
