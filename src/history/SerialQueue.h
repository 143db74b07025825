#pragma once

#include "threads/Mutex.h"

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <limits>
#include <string>
#include <thread>

namespace corvane {

/// Runs jobs one after the other, in the order in which they were submitted, on a thread of its
/// own, which bears the queue's label. Safe from any thread. The destructor waits until everything
/// submitted has run.
///
/// If the system refuses the thread, jobs are dropped; each further job tries to start it again.
class SerialQueue {
public:
    using Job = std::function<void()>;

    /// What waits behind a job that hangs.
    struct Limits {
        std::size_t mostWaiting = std::numeric_limits<std::size_t>::max();
        /// A job that has run for so long hangs: if more jobs of `async` wait than that, the oldest
        /// of them are dropped.
        std::chrono::milliseconds patience = std::chrono::seconds(2);
    };

    explicit SerialQueue(std::string label);
    SerialQueue(std::string label, Limits limits);
    ~SerialQueue();
    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    /// Submits the job and returns at once.
    void async(Job job);

    /// Submits the job and returns when it has run, after all that was submitted before, or at once
    /// if there is no thread to run it. Deadlocks when called from a job of the same queue.
    void sync(const Job &job);

private:
    using Clock = std::chrono::steady_clock;

    struct Entry {
        Job job = {};
        bool mayBeDropped = true;
    };

    void run();

    /// False if there is no thread.
    bool submit(Entry entry);
    void dropOldest() REQUIRES(m_mutex);
    bool hangs() const REQUIRES(m_mutex);

    /// The next job; empty when the queue is about to end and nothing is left to run.
    Job takeJob();

    const std::string m_label;
    const Limits m_limits;
    Mutex m_mutex;
    Condition m_changed;
    std::deque<Entry> m_jobs GUARDED_BY(m_mutex);
    Clock::time_point m_began GUARDED_BY(m_mutex) = {}; ///< When the running job began.
    bool m_runs GUARDED_BY(m_mutex) = false;
    bool m_stopping GUARDED_BY(m_mutex) = false;
    bool m_hasThread GUARDED_BY(m_mutex) = false;
    std::thread m_thread; ///< Assigned until it could be started, under the mutex.
};

} // namespace corvane
