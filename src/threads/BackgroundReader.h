#pragma once

#include "threads/Mutex.h"
#include "threads/OneThread.h"
#include "threads/ReaderThread.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <thread>
#include <utility>

namespace corvane {

/// How long the user of a `BackgroundReader` waits for values that it asked for. The program waits
/// at its start alone, so that the first sample is complete; a test waits for each.
struct ReaderPatience {
    std::chrono::milliseconds first = {};
    std::chrono::milliseconds later = {};
};

/// Reads a value again and again on another thread, since a driver may take seconds for it, or
/// never answer. Used on one thread, which waits for the other only as long as it says. While the
/// system refuses the thread there is no value; each request tries to start it again.
template <typename Value>
class BackgroundReader {
public:
    /// Runs on the reader's thread, with the instant of the request.
    using Read = std::function<Value(double now)>;

    /// Creates the function, on the thread, at the first request: opening may stall too. Once more
    /// where the reader had to leave a shared thread on which another one stalls.
    using Open = std::function<Read()>;

    static constexpr double oldestLive = 2.5; ///< Seconds.

    /// A value that was asked for longer ago than `oldest` seconds is absent. `thread` may be
    /// shared with other readers of the same user.
    explicit BackgroundReader(
        Open open, double oldest = oldestLive,
        std::shared_ptr<ReaderThread> thread = std::make_shared<ReaderThread>())
        : m_mailbox(std::make_shared<Mailbox>(std::move(open))),
          m_thread(std::move(thread)),
          m_oldest(oldest)
    {
    }

    /// Waits a second at most. A read that never ends is left behind.
    ~BackgroundReader() { m_thread->withdraw(*m_mailbox, std::chrono::seconds(1)); }

    BackgroundReader(const BackgroundReader &) = delete;
    BackgroundReader &operator=(const BackgroundReader &) = delete;

    /// Asks for a new value. While the thread is busy, the newest request is the one that it will
    /// answer next.
    void request(double now, std::chrono::milliseconds patience = {})
    {
        m_user.check();
        if (m_thread->leaveIfStalled(*m_mailbox, now))
            m_thread = std::make_shared<ReaderThread>();
        if (!m_thread->start())
            return;
        const bool isIdle = m_mailbox->put(now);
        m_thread->post(m_mailbox, now);
        if (!isIdle || patience.count() <= 0)
            return; // The read for an earlier request may never end.
        m_thread->wake();
        m_mailbox->waitForAnswer(patience);
    }

    /// The same, with the patience for the first request or that for a later one.
    void request(double now, const ReaderPatience &patience)
    {
        request(now, std::exchange(m_hasAsked, true) ? patience.later : patience.first);
    }

    std::optional<Value> newest(double now) const
    {
        m_user.check();
        return m_mailbox->newest(now - m_oldest);
    }

private:
    /// What passes between the two threads.
    class Mailbox : public ReaderThread::Job {
    public:
        explicit Mailbox(Open open) : m_open(std::move(open)) { }

        /// Whether no earlier request was due.
        bool put(double now)
        {
            const MutexLock lock(m_mutex);
            const bool isIdle = m_answered == m_requested;
            ++m_requested;
            m_instant = now;
            return isIdle;
        }

        void waitForAnswer(std::chrono::milliseconds patience)
        {
            MutexLock lock(m_mutex);
            const auto deadline = Clock::now() + patience;
            while (m_answered != m_requested && waitUntil(lock, deadline)) { }
        }

        std::optional<Value> newest(double since) const
        {
            const MutexLock lock(m_mutex);
            return m_value && m_valueInstant >= since ? m_value : std::nullopt;
        }

        /// On the thread.
        void run() override
        {
            m_answer.reset();
            const auto request = take();
            if (!request)
                return;
            if (!m_read || m_reader != std::this_thread::get_id())
                m_read = m_open();
            m_reader = std::this_thread::get_id();
            m_answer = Answer{*request, m_read(request->instant)};
        }

        /// On the thread. It counts as free by then: the next request may follow at once.
        void tell() override
        {
            if (!m_answer)
                return;
            store(std::move(*m_answer));
            m_told.notifyAll();
        }

    private:
        using Clock = std::chrono::steady_clock;
        struct Request {
            unsigned long number = 0;
            double instant = 0;
        };
        struct Answer {
            Request request = {};
            Value value = {};
        };

        /// Absent when the newest request was answered.
        std::optional<Request> take() const
        {
            const MutexLock lock(m_mutex);
            if (m_requested == m_answered)
                return std::nullopt;
            return Request{m_requested, m_instant};
        }

        void store(Answer answer)
        {
            const MutexLock lock(m_mutex);
            m_value = std::move(answer.value);
            m_valueInstant = answer.request.instant;
            m_answered = answer.request.number;
        }

        /// False when the time is over.
        bool waitUntil(MutexLock &lock, Clock::time_point deadline) REQUIRES(m_mutex)
        {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
            if (left.count() <= 0)
                return false;
            m_told.waitFor(lock, left);
            return true;
        }

        Open m_open;
        Read m_read = {};                    ///< Used by the thread alone, as the next two.
        std::thread::id m_reader = {};       ///< The thread that opened it.
        std::optional<Answer> m_answer = {}; ///< Absent when nothing was due.
        mutable Mutex m_mutex = {};
        Condition m_told = {};                             ///< Wakes its user.
        unsigned long m_requested GUARDED_BY(m_mutex) = 0; ///< Number of the newest request.
        unsigned long m_answered GUARDED_BY(m_mutex) = 0;
        double m_instant GUARDED_BY(m_mutex) = 0; ///< Of the newest request.
        std::optional<Value> m_value GUARDED_BY(m_mutex) = {};
        double m_valueInstant GUARDED_BY(m_mutex) = 0;
    };

    std::shared_ptr<Mailbox> m_mailbox; ///< Shared with the thread, which may outlive this object.
    std::shared_ptr<ReaderThread> m_thread;
    double m_oldest;
    bool m_hasAsked = false;
    mutable OneThread m_user = {};
};

} // namespace corvane
