#pragma once

#include <QCoreApplication>
#include <QThread>

namespace corvane {

/// Stops a debug build when the caller is not on the main thread. To be called by what is for the
/// main thread alone: in constructors and in functions without an object.
inline void assertMainThread()
{
    Q_ASSERT_X(!QCoreApplication::instance()
                   || QCoreApplication::instance()->thread() == QThread::currentThread(),
               "assertMainThread", "called on another thread");
}

} // namespace corvane
