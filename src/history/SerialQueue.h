#pragma once

#include <QString>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace corvane {

/// Runs jobs one after the other, in the order in which they were handed in, on a thread of its
/// own. Safe from any thread. Destruction waits until everything handed in has run.
class SerialQueue {
public:
    using Job = std::function<void()>;

    explicit SerialQueue(QString label);
    ~SerialQueue();
    SerialQueue(const SerialQueue &) = delete;
    SerialQueue &operator=(const SerialQueue &) = delete;

    const QString &label() const { return m_label; }

    /// Returns at once.
    void async(Job job);

    /// Returns when the job has run, after all that was handed in before. Not from within a job,
    /// which would wait for itself.
    void sync(const Job &job);

private:
    void run();

    const QString m_label;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Job> m_jobs;  ///< Guarded by m_mutex.
    bool m_stopping = false; ///< Guarded by m_mutex.
    std::thread m_thread;    ///< Last: it uses all of the above.
};

} // namespace corvane
