#pragma once

#include "gpu/NvidiaLibrary_linux.h"
#include "platform/BootClock.h"
#include "threads/OneThread.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace corvane {

/// One reading of all NVIDIA GPUs; `seconds` is when the library calls began.
struct NvidiaReading {
    double seconds = 0;
    std::vector<NvidiaDeviceReading> devices = {};
};

/// Reads NVIDIA's management library on a thread of its own, because its calls may stall for
/// seconds: no call of this class waits for the library. Used on one thread. A library that cannot
/// be opened, or that loses its driver or GPU, is tried again a minute later. While the system
/// refuses the thread there is no reading; each request tries to start it again.
class NvidiaReader {
public:
    explicit NvidiaReader(std::string library, std::function<double()> clock = secondsSinceBoot);

    /// Gives a stalled library a second; then leaves the thread behind, which ends by itself when
    /// the library returns.
    ~NvidiaReader();

    /// Asks for a new reading, opening the library if it is not open. `withProcesses`: with the
    /// processes that use each GPU, which takes further calls.
    void request(bool withProcesses = false);

    /// Closes the library, so that the GPUs may fall asleep, and forgets the newest reading.
    void release();

    /// The newest reading; absent when there is none, or when it is too old to be live.
    std::optional<NvidiaReading> newest() const;

    /// `known` while the library works, and before it was first opened; else why it does not.
    Coverage coverage() const;

private:
    class Mailbox;
    static void work(const std::shared_ptr<Mailbox> &mailbox, const std::string &path,
                     const std::function<double()> &clock);

    void startIfNeeded();

    const std::string m_library;
    std::function<double()> m_clock;
    std::shared_ptr<Mailbox> m_mailbox; ///< Shared with the thread, which may outlive this object.
    std::thread m_thread;               ///< Not joinable until it could be started.
    mutable OneThread m_user = {};
};

} // namespace corvane
