#pragma once

#include "gpu/NvidiaLibrary.h"
#include "platform/BootClock.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace corvane {

/// All GPUs of NVIDIA, as they were when the library began to be asked.
struct NvidiaReading {
    double seconds = 0;
    std::vector<NvidiaDeviceReading> devices = {};
};

/// Reads NVIDIA's management library on a thread of its own, because its calls may stall for
/// seconds: no call of this class waits for the library. Main thread. A library that cannot be
/// opened, or that loses its GPU, is tried again a minute later.
class NvidiaReader {
public:
    explicit NvidiaReader(std::string library, std::function<double()> clock = secondsSinceBoot);

    /// Gives a stalled library a short time; then leaves the thread behind, which ends by itself
    /// when the library returns.
    ~NvidiaReader();

    /// Asks for a new reading, opening the library if it is not open.
    void request();

    /// Has the library closed, so that the GPUs may fall asleep. What was read is forgotten.
    void release();

    /// The newest reading; nothing when there is none, or when it is too old to be live.
    std::optional<NvidiaReading> newest() const;

private:
    struct Desk;
    static void work(const std::shared_ptr<Desk> &desk);

    std::function<double()> m_clock;
    std::shared_ptr<Desk> m_desk; ///< The thread's too, which may outlive this object.
    std::thread m_thread;
};

} // namespace corvane
