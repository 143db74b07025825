#include "history/SerialQueue.h"

#include "platform/ThreadName.h"

#include <utility>

namespace corvane {

namespace {

/// Lets one thread wait until another one has done something.
class Event {
public:
    void wait()
    {
        MutexLock lock(m_mutex);
        while (!m_hasHappened)
            m_condition.wait(lock);
    }

    void happen()
    {
        // Notified under the lock: the waiting thread may destroy this object once it is free.
        const MutexLock lock(m_mutex);
        m_hasHappened = true;
        m_condition.notifyOne();
    }

private:
    Mutex m_mutex;
    Condition m_condition;
    bool m_hasHappened GUARDED_BY(m_mutex) = false;
};

} // namespace

SerialQueue::SerialQueue(const std::string &label)
    : m_thread([this, label] {
          nameThread(label);
          run();
      })
{
}

SerialQueue::~SerialQueue()
{
    {
        const MutexLock lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notifyOne();
    m_thread.join();
}

void SerialQueue::async(Job job)
{
    {
        const MutexLock lock(m_mutex);
        m_jobs.push_back(std::move(job));
    }
    m_changed.notifyOne();
}

void SerialQueue::sync(const Job &job)
{
    Event finished;
    async([&job, &finished] {
        job();
        finished.happen();
    });
    finished.wait();
}

void SerialQueue::run()
{
    while (const Job job = takeJob())
        job();
}

SerialQueue::Job SerialQueue::takeJob()
{
    MutexLock lock(m_mutex);
    while (m_jobs.empty() && !m_stopping)
        m_changed.wait(lock);
    if (m_jobs.empty())
        return nullptr;
    Job job = std::move(m_jobs.front());
    m_jobs.pop_front();
    return job;
}

} // namespace corvane
