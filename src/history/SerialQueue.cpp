#include "history/SerialQueue.h"

#include <utility>

namespace corvane {

SerialQueue::SerialQueue(QString label) : m_label(std::move(label)), m_thread([this] { run(); }) { }

SerialQueue::~SerialQueue()
{
    {
        const std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notify_one();
    m_thread.join();
}

void SerialQueue::async(Job job)
{
    {
        const std::lock_guard lock(m_mutex);
        m_jobs.push_back(std::move(job));
    }
    m_changed.notify_one();
}

void SerialQueue::sync(const Job &job)
{
    std::mutex mutex;
    std::condition_variable finished;
    bool done = false;
    async([&] {
        job();
        // Told under the lock: the waiting side may take these objects away as soon as it is free.
        const std::lock_guard lock(mutex);
        done = true;
        finished.notify_one();
    });
    std::unique_lock lock(mutex);
    finished.wait(lock, [&done] { return done; });
}

void SerialQueue::run()
{
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_changed.wait(lock, [this] { return m_stopping || !m_jobs.empty(); });
        if (m_jobs.empty())
            return;
        const Job job = std::exchange(m_jobs.front(), nullptr);
        m_jobs.pop_front();
        lock.unlock();
        job();
        lock.lock();
    }
}

} // namespace corvane
