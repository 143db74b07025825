#pragma once

#include <QCoreApplication>
#include <QThread>

namespace corvane {

/// Stops a debug build when the caller is not on the main thread. For constructors, and for
/// functions without an object, that belong to the main thread.
inline void assertMainThread()
{
    Q_ASSERT_X(!QCoreApplication::instance()
                   || QCoreApplication::instance()->thread() == QThread::currentThread(),
               "assertMainThread", "called on another thread");
}

} // namespace corvane
