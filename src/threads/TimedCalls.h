#pragma once

#include "threads/Mutex.h"
#include "threads/ThreadPriority.h"
#include "threads/ThreadStart.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace corvane {

/// Makes calls that may never return, such as a read whose answer depends on another process or on
/// a server. Each runs on a thread of its own; the caller waits for a limited time and then leaves
/// it to itself. Safe from any thread. What is called must not use anything that ends with `main`.
class TimedCalls {
public:
    enum class Outcome {
        answered,
        tooSlow, ///< Still runs; its value will be dropped.
        refused  ///< Not called: too many calls still run, or the system refuses a thread.
    };

    template <typename Value>
    struct Result {
        Outcome outcome = Outcome::refused;
        std::optional<Value> value = {}; ///< Present when the call has answered.
    };

    /// At most `mostAbandoned` calls are left to themselves at a time.
    explicit TimedCalls(int mostAbandoned) : m_abandoned(std::make_shared<Abandoned>(mostAbandoned))
    {
    }

    template <typename Value>
    Result<Value> call(std::function<Value()> function, std::chrono::milliseconds patience)
    {
        if (!m_abandoned->hasRoom())
            return {};
        const auto slot = std::make_shared<Slot<Value>>();
        std::thread thread =
            startThread([slot, abandoned = m_abandoned, function = std::move(function)] {
                lowerThreadPriority();
                if (!slot->put(function()))
                    abandoned->add(-1);
            });
        if (!thread.joinable())
            return {};
        thread.detach();
        auto value = slot->take(patience, *m_abandoned);
        const Outcome outcome = value ? Outcome::answered : Outcome::tooSlow;
        return {outcome, std::move(value)};
    }

private:
    class Abandoned {
    public:
        explicit Abandoned(int most) : m_room(most) { }

        bool hasRoom()
        {
            const MutexLock lock(m_mutex);
            return m_room > 0;
        }

        void add(int calls)
        {
            const MutexLock lock(m_mutex);
            m_room -= calls;
        }

    private:
        Mutex m_mutex;
        int m_room GUARDED_BY(m_mutex);
    };

    /// Where one call leaves its value.
    template <typename Value>
    class Slot {
    public:
        /// False when nobody waits any more.
        bool put(Value value)
        {
            const MutexLock lock(m_mutex);
            if (m_abandoned)
                return false;
            m_value = std::move(value);
            m_put.notifyOne();
            return true;
        }

        std::optional<Value> take(std::chrono::milliseconds patience, Abandoned &abandoned)
        {
            const auto end = std::chrono::steady_clock::now() + patience;
            MutexLock lock(m_mutex);
            while (!m_value && !m_abandoned) {
                const auto left = std::chrono::ceil<std::chrono::milliseconds>(
                    end - std::chrono::steady_clock::now());
                m_abandoned = left.count() <= 0;
                if (!m_abandoned)
                    m_put.waitFor(lock, left);
            }
            if (m_abandoned)
                abandoned.add(1);
            return std::move(m_value);
        }

    private:
        Mutex m_mutex;
        Condition m_put;
        std::optional<Value> m_value GUARDED_BY(m_mutex);
        bool m_abandoned GUARDED_BY(m_mutex) = false; ///< The caller has left.
    };

    std::shared_ptr<Abandoned> m_abandoned;
};

} // namespace corvane
