#pragma once

#include "threads/Mutex.h"

#include <utility>

namespace corvane {

/// Hands the newest of several values over to another thread. Safe from any thread.
template <typename Value>
class Slot {
public:
    void put(Value value)
    {
        const MutexLock lock(m_mutex);
        m_value = std::move(value);
    }

    Value get() const
    {
        const MutexLock lock(m_mutex);
        return m_value;
    }

private:
    mutable Mutex m_mutex = {};
    Value m_value GUARDED_BY(m_mutex) = {};
};

} // namespace corvane
