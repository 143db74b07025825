#include "threads/BackgroundJob.h"

#include "threads/Mutex.h"
#include "threads/ThreadPriority.h"
#include "threads/ThreadStart.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

#include <atomic>

namespace corvane {

namespace {

/// Where a finished job reports. The lock makes the job's writes visible to the receiver's thread
/// and keeps the receiver alive while an event is posted to it.
struct ReturnPath {
    Mutex mutex;
    QObject *receiver GUARDED_BY(mutex) = nullptr; ///< Null once the receiver is gone.
};

/// Waits for one job on its owner's thread; deleted by the delivery or with the owner.
class JobReceiver : public QObject {
public:
    JobReceiver(QObject *owner, std::shared_ptr<ReturnPath> path, std::function<void()> deliver)
        : QObject(owner),
          m_path(std::move(path)),
          m_deliver(std::move(deliver))
    {
        const MutexLock lock(m_path->mutex);
        m_path->receiver = this;
    }

    ~JobReceiver() override
    {
        const MutexLock lock(m_path->mutex);
        m_path->receiver = nullptr;
    }

    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        // The delivery may delete the owner and with it this object.
        const auto deliver = std::move(m_deliver);
        delete this;
        deliver();
        return true;
    }

private:
    std::shared_ptr<ReturnPath> m_path;
    std::function<void()> m_deliver;
};

/// Jobs that run now. They still count when `main` has returned, so this is never destroyed.
constinit std::atomic<int> runningJobs = 0;

void runJob(std::function<void()> job, const std::shared_ptr<ReturnPath> &path)
{
    lowerThreadPriority();
    job();
    job = nullptr;
    --runningJobs;
    const MutexLock lock(path->mutex);
    if (path->receiver)
        QCoreApplication::postEvent(path->receiver, new QEvent(QEvent::User));
}

} // namespace

bool runThenCall(QObject *owner, std::function<void()> job, std::function<void()> deliver)
{
    Q_ASSERT(owner->thread() == QThread::currentThread());
    if (++runningJobs > mostBackgroundJobs) {
        --runningJobs;
        return false;
    }
    const auto path = std::make_shared<ReturnPath>();
    auto *receiver = new JobReceiver(owner, path, std::move(deliver));
    std::thread thread =
        startThread([job = std::move(job), path]() mutable { runJob(std::move(job), path); });
    if (thread.joinable()) {
        thread.detach();
        return true;
    }
    // The job counts as one too many.
    --runningJobs;
    delete receiver;
    return false;
}

} // namespace corvane
