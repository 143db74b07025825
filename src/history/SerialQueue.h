#pragma once

#include "platform/Mutex.h"

#include <deque>
#include <functional>
#include <string>
#include <thread>

namespace corvane {

/// Runs jobs one after the other, in the order in which they were submitted, on a thread of its
/// own, which bears the queue's label. Safe from any thread. The destructor waits until everything
/// submitted has run.
class SerialQueue {
public:
    using Job = std::function<void()>;

    explicit SerialQueue(const std::string &label);
    ~SerialQueue();
    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    /// Submits the job and returns at once.
    void async(Job job);

    /// Submits the job and returns when it has run, after all that was submitted before. Deadlocks
    /// when called from a job of the same queue.
    void sync(const Job &job);

private:
    void run();

    /// The next job; empty when the queue is about to end and nothing is left to run.
    Job takeJob();

    Mutex m_mutex;
    Condition m_changed;
    std::deque<Job> m_jobs GUARDED_BY(m_mutex);
    bool m_stopping GUARDED_BY(m_mutex) = false;
    std::thread m_thread; ///< Last: it uses all of the above.
};

} // namespace corvane
