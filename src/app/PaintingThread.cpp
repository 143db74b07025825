#include "app/PaintingThread.h"

#include "threads/MainThread.h"
#include "threads/ThreadStart.h"

#include <QSemaphore>
#include <QThreadPool>

#include <memory>

namespace corvane {

namespace {

void dropMessage(QtMsgType, const QMessageLogContext &, const QString &) { }

} // namespace

bool startPaintingThread()
{
    constexpr int patience = 10'000; // In milliseconds; for a machine under load.
    assertMainThread();
    // Tried first, because the pool does not report a failure.
    if (!canStartThread())
        return false;
    QThreadPool &pool = *QThreadPool::globalInstance();
    pool.setMaxThreadCount(1);
    pool.setExpiryTimeout(-1);
    const auto started = std::make_shared<QSemaphore>();
    // A failure is reported by the caller, in one line.
    const QtMessageHandler before = qInstallMessageHandler(dropMessage);
    pool.start([started] { started->release(); });
    const bool hasStarted = started->tryAcquire(1, patience);
    qInstallMessageHandler(before);
    return hasStarted;
}

} // namespace corvane
