#include "app/PaintingThread.h"

#include "threads/MainThread.h"
#include "threads/ThreadStart.h"

#include <QSemaphore>
#include <QThreadPool>

#include <memory>

namespace corvane {

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
    pool.start([started] { started->release(); });
    return started->tryAcquire(1, patience);
}

} // namespace corvane
