#pragma once

#include "threads/Mutex.h"

namespace corvane::simulated {

/// The hub of the temperature sensors, which a test can stall. Any thread.
class SensorHub {
public:
    /// Every read waits from now on.
    void stall()
    {
        const MutexLock lock(m_mutex);
        m_isStalled = true;
    }

    void resume()
    {
        const MutexLock lock(m_mutex);
        m_isStalled = false;
        m_changed.notifyAll();
    }

    void wait()
    {
        MutexLock lock(m_mutex);
        while (m_isStalled)
            m_changed.wait(lock);
    }

private:
    Mutex m_mutex = {};
    Condition m_changed = {};
    bool m_isStalled GUARDED_BY(m_mutex) = false;
};

SensorHub &sensorHub();

} // namespace corvane::simulated
