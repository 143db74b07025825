#pragma once

#include "threads/Mutex.h"
#include "threads/OneThread.h"
#include "threads/ThreadStart.h"

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

/// Reads a value again and again on a thread of its own, since a driver may take seconds for it, or
/// never answer. Used on one thread, which waits for the other only as long as it says. While the
/// system refuses the thread there is no value; each request tries to start it again.
template <typename Value>
class BackgroundReader {
public:
    /// Runs on the reader's thread, with the instant of the request.
    using Read = std::function<Value(double now)>;

    /// Creates the function, on the thread, at the first request: opening may stall too. What the
    /// function owns ends there.
    using Open = std::function<Read()>;

    static constexpr double oldestLive = 2.5; ///< Seconds.

    /// A value that was asked for longer ago than `oldest` seconds is absent.
    explicit BackgroundReader(Open open, double oldest = oldestLive)
        : m_mailbox(std::make_shared<Mailbox>()),
          m_open(std::move(open)),
          m_oldest(oldest)
    {
    }

    /// Waits a second at most. A thread whose read never ends is left behind; it ends by itself
    /// when the read does.
    ~BackgroundReader()
    {
        constexpr std::chrono::seconds patience(1);
        if (!m_thread.joinable())
            return;
        if (m_mailbox->end(patience))
            m_thread.join();
        else
            m_thread.detach();
    }

    BackgroundReader(const BackgroundReader &) = delete;
    BackgroundReader &operator=(const BackgroundReader &) = delete;

    /// Asks for a new value. While the thread is busy, the newest request is the one that it will
    /// answer next.
    void request(double now, std::chrono::milliseconds patience = {})
    {
        m_user.check();
        if (!m_thread.joinable())
            m_thread = startThread([mailbox = m_mailbox, open = m_open] { mailbox->work(open); });
        if (m_thread.joinable())
            m_mailbox->post(now, patience);
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
    class Mailbox {
    public:
        /// Waits for the answer, unless an earlier one is due: that read may never end.
        void post(double now, std::chrono::milliseconds patience)
        {
            const bool isIdle = put(now);
            m_asked.notifyAll();
            if (isIdle && patience.count() > 0)
                waitForAnswer(patience);
        }

        std::optional<Value> newest(double since)
        {
            const MutexLock lock(m_mutex);
            return m_value && m_valueInstant >= since ? m_value : std::nullopt;
        }

        /// False when the thread did not end in that time.
        bool end(std::chrono::milliseconds patience)
        {
            MutexLock lock(m_mutex);
            m_ending = true;
            m_asked.notifyAll();
            const auto deadline = Clock::now() + patience;
            while (!m_ended && waitUntil(lock, deadline)) { }
            return m_ended;
        }

        /// The thread.
        void work(const Open &open)
        {
            Read read;
            while (const auto request = take()) {
                if (!read)
                    read = open();
                answer(*request, read(request->instant));
                m_told.notifyAll();
            }
            read = nullptr;
            const MutexLock lock(m_mutex);
            m_ended = true;
            m_told.notifyAll();
        }

    private:
        using Clock = std::chrono::steady_clock;
        struct Request {
            unsigned long number = 0;
            double instant = 0;
        };

        /// Whether no earlier request was due. Who calls it wakes the thread afterwards, without
        /// the lock, or the thread would wake only to wait for that.
        bool put(double now)
        {
            const MutexLock lock(m_mutex);
            const bool isIdle = m_answered == m_requested;
            ++m_requested;
            m_instant = now;
            return isIdle;
        }

        /// Likewise.
        void answer(const Request &request, Value value)
        {
            const MutexLock lock(m_mutex);
            m_value = std::move(value);
            m_valueInstant = request.instant;
            m_answered = request.number;
        }

        std::optional<Request> take()
        {
            MutexLock lock(m_mutex);
            while (m_requested == m_answered && !m_ending)
                m_asked.wait(lock);
            if (m_ending)
                return std::nullopt;
            return Request{m_requested, m_instant};
        }

        void waitForAnswer(std::chrono::milliseconds patience)
        {
            MutexLock lock(m_mutex);
            const auto deadline = Clock::now() + patience;
            while (m_answered != m_requested && waitUntil(lock, deadline)) { }
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

        Mutex m_mutex = {};
        Condition m_asked = {};                            ///< Wakes the thread.
        Condition m_told = {};                             ///< Wakes its user.
        unsigned long m_requested GUARDED_BY(m_mutex) = 0; ///< Number of the newest request.
        unsigned long m_answered GUARDED_BY(m_mutex) = 0;
        double m_instant GUARDED_BY(m_mutex) = 0; ///< Of the newest request.
        std::optional<Value> m_value GUARDED_BY(m_mutex) = {};
        double m_valueInstant GUARDED_BY(m_mutex) = 0;
        bool m_ending GUARDED_BY(m_mutex) = false;
        bool m_ended GUARDED_BY(m_mutex) = false;
    };

    std::shared_ptr<Mailbox> m_mailbox; ///< Shared with the thread, which may outlive this object.
    Open m_open;
    double m_oldest;
    std::thread m_thread = {}; ///< Not joinable until it could be started.
    bool m_hasAsked = false;
    mutable OneThread m_user = {};
};

} // namespace corvane
