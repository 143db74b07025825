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

constexpr auto finished = QEvent::User;
constexpr auto reported = static_cast<QEvent::Type>(QEvent::User + 1);

/// Waits for one job on its owner's thread; deleted by the delivery or with the owner.
class JobReceiver : public QObject {
public:
    JobReceiver(QObject *owner, std::shared_ptr<ReturnPath> path, std::function<void()> onReport,
                std::function<void()> deliver)
        : QObject(owner),
          m_path(std::move(path)),
          m_onReport(std::move(onReport)),
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
        if (event->type() == reported) {
            const auto onReport = m_onReport; // It may delete the owner and with it this object.
            onReport();
            return true;
        }
        if (event->type() != finished)
            return QObject::event(event);
        // The delivery may delete the owner and with it this object.
        const auto deliver = std::move(m_deliver);
        delete this;
        deliver();
        return true;
    }

private:
    std::shared_ptr<ReturnPath> m_path;
    std::function<void()> m_onReport;
    std::function<void()> m_deliver;
};

/// Jobs that run now. They still count when `main` has returned, so this is never destroyed.
constinit std::atomic<int> runningJobs = 0;

void post(ReturnPath &path, QEvent::Type type)
{
    const MutexLock lock(path.mutex);
    if (path.receiver)
        QCoreApplication::postEvent(path.receiver, new QEvent(type));
}

using ReportingJob = std::function<void(const std::function<void()> &report)>;

void runJob(ReportingJob job, const std::shared_ptr<ReturnPath> &path)
{
    lowerThreadPriority();
    job([&path] { post(*path, reported); });
    job = nullptr;
    --runningJobs;
    post(*path, finished);
}

} // namespace

bool runThenCall(QObject *owner, std::function<void()> job, std::function<void()> deliver)
{
    return runThenCall(
        owner, [job = std::move(job)](const auto &) { job(); }, {}, std::move(deliver));
}

bool runThenCall(QObject *owner, ReportingJob job, std::function<void()> onReport,
                 std::function<void()> deliver)
{
    Q_ASSERT(owner->thread() == QThread::currentThread());
    if (++runningJobs > mostBackgroundJobs) {
        --runningJobs;
        return false;
    }
    const auto path = std::make_shared<ReturnPath>();
    auto *receiver = new JobReceiver(owner, path, std::move(onReport), std::move(deliver));
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

bool isRunningBackgroundJobs()
{
    return runningJobs > 0;
}

} // namespace corvane
