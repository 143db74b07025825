#include "history/SerialQueue.h"

#include "threads/ThreadName.h"
#include "threads/ThreadStart.h"

#include <algorithm>
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

SerialQueue::SerialQueue(std::string label) : SerialQueue(std::move(label), Limits{}) { }

SerialQueue::SerialQueue(std::string label, Limits limits)
    : m_label(std::move(label)),
      m_limits(limits)
{
}

SerialQueue::~SerialQueue()
{
    {
        const MutexLock lock(m_mutex);
        m_stopping = true;
    }
    m_changed.notifyOne();
    if (m_thread.joinable())
        m_thread.join();
}

void SerialQueue::async(Job job)
{
    submit({.job = std::move(job)});
}

void SerialQueue::sync(const Job &job)
{
    Event finished;
    const bool isSubmitted = submit({.job =
                                         [&job, &finished] {
                                             job();
                                             finished.happen();
                                         },
                                     .mayBeDropped = false});
    if (isSubmitted)
        finished.wait();
}

bool SerialQueue::submit(Entry entry)
{
    {
        const MutexLock lock(m_mutex);
        if (!m_hasThread)
            m_thread = startThread([this] { run(); });
        m_hasThread = m_thread.joinable();
        if (!m_hasThread)
            return false;
        m_jobs.push_back(std::move(entry));
        if (m_jobs.size() > m_limits.mostWaiting && hangs())
            dropOldest();
    }
    m_changed.notifyOne();
    return true;
}

/// Until no more wait than may.
void SerialQueue::dropOldest()
{
    while (m_jobs.size() > m_limits.mostWaiting) {
        const auto oldest = std::ranges::find(m_jobs, true, &Entry::mayBeDropped);
        if (oldest == m_jobs.end())
            return;
        m_jobs.erase(oldest);
    }
}

bool SerialQueue::hangs() const
{
    return m_runs && Clock::now() - m_began >= m_limits.patience;
}

void SerialQueue::run()
{
    nameThread(m_label);
    while (const Job job = takeJob())
        job();
}

SerialQueue::Job SerialQueue::takeJob()
{
    MutexLock lock(m_mutex);
    m_runs = false;
    while (m_jobs.empty() && !m_stopping)
        m_changed.wait(lock);
    if (m_jobs.empty())
        return nullptr;
    m_runs = true;
    m_began = Clock::now();
    Job job = std::move(m_jobs.front().job);
    m_jobs.pop_front();
    return job;
}

} // namespace corvane
