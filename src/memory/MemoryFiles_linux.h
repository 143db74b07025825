#pragma once

#include "memory/MemoryCounters.h"
#include "platform/KernelFile_linux.h"
#include "threads/OneThread.h"

#include <string>
#include <vector>

namespace corvane {

/// The memory statistics of the machine whose kernel files lie below `root`. Keeps the files open
/// between reads; used on one thread.
class MemoryFiles {
public:
    explicit MemoryFiles(std::string root);

    MemoryCounters read();

private:
    void scan();
    std::uint64_t zramBytes();

    std::string m_root;
    KernelFile m_memInfo;
    KernelFile m_pressure;
    KernelFile m_arcStats;
    bool m_hasArcStats = false;
    std::vector<KernelFile> m_zram = {};
    int m_readsUntilScan = 0;
    OneThread m_thread = {};
};

} // namespace corvane
