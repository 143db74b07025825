#pragma once

#include "memory/MemoryCounters.h"
#include "platform/BootClock.h"
#include "platform/TickFile_linux.h"
#include "threads/BackgroundReader.h"
#include "threads/OneThread.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace corvane {

/// The memory statistics of the machine whose kernel files lie below `root`. Keeps the files open
/// between reads; used on one thread.
///
/// Locks that others may hold for long stand behind compressed disks and the ZFS cache: a thread of
/// its own reads these, and what it has not read for 12.5 s is absent.
class MemoryFiles {
public:
    explicit MemoryFiles(std::string root, std::function<double()> now = secondsSinceBoot,
                         ReaderPatience patience = {.first = std::chrono::minutes(1),
                                                    .later = std::chrono::minutes(1)});

    MemoryCounters read();

private:
    /// What the other files held. Absent and 0 bytes: unreadable, or this machine has none.
    struct SlowTexts {
        std::optional<std::string> arcStats = {};
        std::uint64_t zramBytes = 0;
    };
    class SlowFiles;

    SlowTexts slowTexts(double now);

    std::function<double()> m_now;
    TickFile m_memInfo;
    TickFile m_pressure; ///< Behind a lock that is held for a walk over the CPUs at most.
    ReaderPatience m_patience;
    BackgroundReader<SlowTexts> m_slow;
    int m_readsUntilRequest = 0;
    OneThread m_thread = {};
};

} // namespace corvane
