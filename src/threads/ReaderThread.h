#pragma once

#include "threads/Mutex.h"
#include "threads/OneThread.h"

#include <chrono>
#include <deque>
#include <memory>
#include <thread>

namespace corvane {

/// The thread on which one or several `BackgroundReader`s read, one after the other: sources that
/// are read in the same tick cost one wake-up together. A source that stalls keeps the thread for
/// itself, because the others leave it. Owned by its readers; its functions are called on the one
/// thread that uses these.
class ReaderThread {
public:
    /// What the thread does for one reader.
    class Job {
    public:
        virtual ~Job() = default;
        virtual void run() = 0;  ///< May stall.
        virtual void tell() = 0; ///< Called after `run`, when the thread counts as free again.
    };

    /// While one exists, posted jobs wait for its end, so that the thread wakes once for all of
    /// them, unless somebody waits for an answer.
    class Batch {
    public:
        explicit Batch(ReaderThread &thread);
        ~Batch();
        Batch(const Batch &) = delete;
        Batch &operator=(const Batch &) = delete;

    private:
        ReaderThread &m_thread;
    };

    ReaderThread();

    /// A thread whose job never ends is left behind; it ends by itself when the job does.
    ~ReaderThread();

    ReaderThread(const ReaderThread &) = delete;
    ReaderThread &operator=(const ReaderThread &) = delete;

    /// Starts the thread unless it runs. False while the system refuses it.
    bool start();

    /// Lets the thread run the job once, after those that were posted before. `now`: the instant of
    /// the tick.
    void post(const std::shared_ptr<Job> &job, double now);

    /// Wakes the thread for what was posted, batch or not.
    void wake();

    /// True where another job stalls, so that this one has to be posted elsewhere; the thread will
    /// not run it any more.
    bool leaveIfStalled(const Job &job, double now);

    /// The thread will not run the job any more. False when it still runs after that time.
    bool withdraw(const Job &job, std::chrono::milliseconds patience);

private:
    struct Shared;

    std::shared_ptr<Shared> m_shared; ///< With the thread, which may outlive this object.
    std::thread m_thread = {};        ///< Not joinable until it could be started.
    bool m_isGathering = false;       ///< In a batch.
    OneThread m_user = {};
};

} // namespace corvane
