#include "platform/BackgroundJob.h"

#include "platform/ThreadPriority.h"

#include <QCoreApplication>
#include <QEvent>

#include <atomic>
#include <mutex>
#include <system_error>
#include <thread>

namespace corvane {

namespace {

/// Where a finished job reports. The lock makes the job's writes visible to the receiver's thread
/// and keeps the receiver alive while it is told.
struct ReturnPath {
    std::mutex mutex;
    QObject *receiver = nullptr; ///< Guarded by mutex; null once nobody waits any more.
};

/// Waits for one job on its owner's thread and dies with the delivery or with the owner.
class JobReceiver : public QObject {
public:
    JobReceiver(QObject *owner, std::shared_ptr<ReturnPath> path, std::function<void()> deliver)
        : QObject(owner),
          m_path(std::move(path)),
          m_deliver(std::move(deliver))
    {
        const std::lock_guard lock(m_path->mutex);
        m_path->receiver = this;
    }

    ~JobReceiver() override
    {
        const std::lock_guard lock(m_path->mutex);
        m_path->receiver = nullptr;
    }

    bool event(QEvent *event) override
    {
        if (event->type() != QEvent::User)
            return QObject::event(event);
        // The owner may die of the delivery, so nothing here may be needed after it.
        const auto deliver = std::move(m_deliver);
        delete this;
        deliver();
        return true;
    }

private:
    std::shared_ptr<ReturnPath> m_path;
    std::function<void()> m_deliver;
};

/// Jobs that run now. Still counted in when `main` has returned, thus never destroyed.
constinit std::atomic<int> runningJobs = 0;

void runJob(std::function<void()> job, const std::shared_ptr<ReturnPath> &path)
{
    lowerThreadPriority();
    job();
    job = nullptr;
    --runningJobs;
    const std::lock_guard lock(path->mutex);
    if (path->receiver)
        QCoreApplication::postEvent(path->receiver, new QEvent(QEvent::User));
}

} // namespace

void runThenCall(QObject *owner, std::function<void()> job, std::function<void()> deliver)
{
    if (++runningJobs > mostBackgroundJobs) {
        --runningJobs;
        return;
    }
    const auto path = std::make_shared<ReturnPath>();
    auto *receiver = new JobReceiver(owner, path, std::move(deliver));
    try {
        std::thread(runJob, std::move(job), path).detach();
    } catch (const std::system_error &) {
        // No thread to be had: as if the job had been one too many.
        --runningJobs;
        delete receiver;
    }
}

} // namespace corvane
