#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

// Annotations that clang checks at compile time (-Wthread-safety); other compilers ignore them.
// https://clang.llvm.org/docs/ThreadSafetyAnalysis.html
#if defined(__clang__)
#define CORVANE_ANNOTATION(annotation) __attribute__((annotation))
#else
#define CORVANE_ANNOTATION(annotation)
#endif

/// The member may be used only while this mutex is held.
#define GUARDED_BY(mutex) CORVANE_ANNOTATION(guarded_by(mutex))
/// The function may be called only while this mutex is held.
#define REQUIRES(...) CORVANE_ANNOTATION(requires_capability(__VA_ARGS__))

namespace corvane {

/// A `std::mutex` that the compiler's analysis knows. It lives beside what it guards.
class CORVANE_ANNOTATION(capability("mutex")) Mutex {
public:
    void lock() CORVANE_ANNOTATION(acquire_capability()) { m_mutex.lock(); }
    void unlock() CORVANE_ANNOTATION(release_capability()) { m_mutex.unlock(); }

private:
    friend class MutexLock;
    std::mutex m_mutex;
};

/// Holds a mutex until the end of the scope.
class CORVANE_ANNOTATION(scoped_lockable) MutexLock {
public:
    explicit MutexLock(Mutex &mutex) CORVANE_ANNOTATION(acquire_capability(mutex))
        : m_lock(mutex.m_mutex)
    {
    }
    ~MutexLock() CORVANE_ANNOTATION(release_capability()) = default;

    MutexLock(const MutexLock &) = delete;
    MutexLock &operator=(const MutexLock &) = delete;

private:
    friend class Condition;
    std::unique_lock<std::mutex> m_lock;
};

/// Wakes threads that wait for what a mutex guards. Wait in a loop over the condition itself: the
/// analysis does not see into predicates, and a wait may end without a notification.
class Condition {
public:
    void wait(MutexLock &lock) { m_condition.wait(lock.m_lock); }

    /// False when the time was over first.
    bool waitFor(MutexLock &lock, std::chrono::milliseconds time)
    {
        return m_condition.wait_for(lock.m_lock, time) == std::cv_status::no_timeout;
    }

    void notifyOne() { m_condition.notify_one(); }
    void notifyAll() { m_condition.notify_all(); }

private:
    std::condition_variable m_condition;
};

} // namespace corvane
