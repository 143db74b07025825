#include "threads/ReaderThread.h"

#include "threads/ThreadStart.h"

#include <algorithm>

namespace corvane {

/// What passes between the two threads.
struct ReaderThread::Shared {
    struct Order {
        std::shared_ptr<Job> job = {};
        double instant = 0; ///< When it was posted.
    };

    Mutex mutex = {};
    Condition posted = {}; ///< Wakes the thread.
    Condition ended = {};  ///< Wakes who waits for the end of a job.
    std::deque<Order> due GUARDED_BY(mutex) = {};
    const Job *running GUARDED_BY(mutex) = nullptr;
    double runningSince GUARDED_BY(mutex) = 0; ///< When it was posted.
    bool isEnding GUARDED_BY(mutex) = false;

    /// The thread.
    void work()
    {
        while (const std::shared_ptr<Job> job = take()) {
            job->run();
            finish();
            job->tell();
        }
    }

    /// Null at the end.
    std::shared_ptr<Job> take()
    {
        MutexLock lock(mutex);
        while (due.empty() && !isEnding)
            posted.wait(lock);
        if (isEnding)
            return nullptr;
        Order order = std::move(due.front());
        due.pop_front();
        running = order.job.get();
        runningSince = order.instant;
        return std::move(order.job);
    }

    void finish()
    {
        {
            const MutexLock lock(mutex);
            running = nullptr;
        }
        ended.notifyAll();
    }

    void erase(const Job &job) REQUIRES(mutex)
    {
        std::erase_if(due, [&job](const Order &order) { return order.job.get() == &job; });
    }
};

ReaderThread::Batch::Batch(ReaderThread &thread) : m_thread(thread)
{
    m_thread.m_isGathering = true;
}

ReaderThread::Batch::~Batch()
{
    m_thread.m_isGathering = false;
    m_thread.wake();
}

ReaderThread::ReaderThread() : m_shared(std::make_shared<Shared>()) { }

ReaderThread::~ReaderThread()
{
    if (!m_thread.joinable())
        return;
    bool isRunning = false;
    {
        const MutexLock lock(m_shared->mutex);
        m_shared->isEnding = true;
        isRunning = m_shared->running != nullptr;
    }
    m_shared->posted.notifyAll();
    if (isRunning)
        m_thread.detach();
    else
        m_thread.join();
}

bool ReaderThread::start()
{
    m_user.check();
    if (!m_thread.joinable())
        m_thread = startThread([shared = m_shared] { shared->work(); });
    return m_thread.joinable();
}

void ReaderThread::post(const std::shared_ptr<Job> &job, double now)
{
    m_user.check();
    {
        const MutexLock lock(m_shared->mutex);
        m_shared->erase(*job);
        m_shared->due.push_back({.job = job, .instant = now});
    }
    if (!m_isGathering)
        wake();
}

/// Without the lock, or the thread would wake only to wait for that.
void ReaderThread::wake()
{
    m_shared->posted.notifyAll();
}

bool ReaderThread::leaveIfStalled(const Job &job, double now)
{
    constexpr double longestRun = 0.5; // Seconds; jobs are posted once a second.
    m_user.check();
    const MutexLock lock(m_shared->mutex);
    const bool isOther = m_shared->running && m_shared->running != &job;
    if (!isOther || now - m_shared->runningSince < longestRun)
        return false;
    m_shared->erase(job);
    return true;
}

bool ReaderThread::withdraw(const Job &job, std::chrono::milliseconds patience)
{
    m_user.check();
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + patience;
    MutexLock lock(m_shared->mutex);
    m_shared->erase(job);
    while (m_shared->running == &job) {
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0)
            return false;
        m_shared->ended.waitFor(lock, left);
    }
    return true;
}

} // namespace corvane
