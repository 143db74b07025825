#pragma once

#include "threads/Mutex.h"
#include "threads/OneThread.h"
#include "threads/ThreadStart.h"

#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace corvane {

/// Calls a function that may stall on a thread of its own, one call at a time. Used on one thread,
/// which waits a moment for each answer, but no more while an answer is late. While the system
/// refuses the thread there is no value; each read tries to start it again.
template <typename Value>
class PatientReader {
public:
    using Read = std::function<Value()>;

    /// Creates the function, on the thread, at the first read. What the function owns ends there.
    using Open = std::function<Read()>;

    /// `clock` returns seconds.
    PatientReader(Open open, std::function<double()> clock)
        : m_open(std::move(open)),
          m_clock(std::move(clock)),
          m_mailbox(std::make_shared<Mailbox>())
    {
    }

    /// Gives a stalled function a second; then leaves the thread behind, which ends by itself when
    /// the function returns.
    ~PatientReader()
    {
        constexpr std::chrono::seconds patience(1);
        if (!m_thread.joinable())
            return;
        m_mailbox->end();
        if (m_mailbox->waitForEnd(patience))
            m_thread.join();
        else
            m_thread.detach();
    }

    PatientReader(const PatientReader &) = delete;
    PatientReader &operator=(const PatientReader &) = delete;

    /// The newest value; absent when there is none, or when it is too old to be live. Asks for a
    /// new one unless one is still awaited.
    std::optional<Value> read()
    {
        constexpr double oldestLive = 2.5; // Seconds.
        m_user.check();
        if (!m_thread.joinable())
            m_thread = startThread([mailbox = m_mailbox, open = m_open] { work(*mailbox, open); });
        const double now = m_clock();
        if (m_thread.joinable())
            m_mailbox->ask(now);
        auto answer = m_mailbox->newest();
        if (!answer || now - answer->seconds > oldestLive)
            return std::nullopt;
        return std::move(answer->value);
    }

private:
    struct Answer {
        double seconds = 0; ///< When it was asked for.
        Value value;
    };

    /// What passes between the two threads.
    class Mailbox {
    public:
        /// Waits for the answer, longer for the first: the thread has to start. Does nothing while
        /// an earlier answer is late.
        void ask(double seconds)
        {
            using namespace std::chrono_literals;
            MutexLock lock(m_mutex);
            if (m_isAsked)
                return;
            m_isAsked = true;
            m_askedAt = seconds;
            m_changed.notifyAll();
            const auto deadline = std::chrono::steady_clock::now() + (m_newest ? 250ms : 1000ms);
            while (m_isAsked && waitUntil(deadline, lock)) { }
        }

        /// The time of the question; absent at the end.
        std::optional<double> nextQuestion()
        {
            MutexLock lock(m_mutex);
            while (!m_isAsked && !m_isOver)
                m_changed.wait(lock);
            return m_isOver ? std::nullopt : std::optional(m_askedAt);
        }

        void answer(Answer answer)
        {
            const MutexLock lock(m_mutex);
            m_newest = std::move(answer);
            m_isAsked = false;
            m_changed.notifyAll();
        }

        std::optional<Answer> newest()
        {
            const MutexLock lock(m_mutex);
            return m_newest;
        }

        void end()
        {
            const MutexLock lock(m_mutex);
            m_isOver = true;
            m_changed.notifyAll();
        }

        void setEnded()
        {
            const MutexLock lock(m_mutex);
            m_hasEnded = true;
            m_changed.notifyAll();
        }

        /// False when the time was over before the thread ended.
        bool waitForEnd(std::chrono::milliseconds time)
        {
            const auto deadline = std::chrono::steady_clock::now() + time;
            MutexLock lock(m_mutex);
            while (!m_hasEnded && waitUntil(deadline, lock)) { }
            return m_hasEnded;
        }

    private:
        /// False when the time was over before something changed.
        bool waitUntil(std::chrono::steady_clock::time_point deadline, MutexLock &lock)
            REQUIRES(m_mutex)
        {
            const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                deadline - std::chrono::steady_clock::now());
            return left.count() > 0 && m_changed.waitFor(lock, left);
        }

        Mutex m_mutex = {};
        Condition m_changed = {};
        bool m_isAsked GUARDED_BY(m_mutex) = false;
        double m_askedAt GUARDED_BY(m_mutex) = 0;
        std::optional<Answer> m_newest GUARDED_BY(m_mutex) = {};
        bool m_isOver GUARDED_BY(m_mutex) = false;
        bool m_hasEnded GUARDED_BY(m_mutex) = false;
    };

    /// The thread.
    static void work(Mailbox &mailbox, const Open &open)
    {
        Read read;
        while (const auto seconds = mailbox.nextQuestion()) {
            if (!read)
                read = open();
            mailbox.answer({*seconds, read()});
        }
        read = nullptr;
        mailbox.setEnded();
    }

    Open m_open;
    std::function<double()> m_clock;
    std::shared_ptr<Mailbox> m_mailbox; ///< Shared with the thread, which may outlive this object.
    std::thread m_thread = {};          ///< Not joinable until it could be started.
    OneThread m_user = {};
};

} // namespace corvane
