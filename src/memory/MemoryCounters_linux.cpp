#include "memory/MemoryCounters.h"

#include "memory/ProcMemInfo.h"
#include "platform/KernelFile.h"
#include "platform/KernelFolder.h"

#include <vector>

namespace corvane {

namespace {

/// The `mm_stat` of every compressed RAM disk that exists now.
std::vector<KernelFile> zramFiles(const std::string &root)
{
    const std::string folder = root + "/sys/block/";
    std::vector<KernelFile> files;
    for (const std::string &name : namesInFolder(folder)) {
        if (name.starts_with("zram"))
            files.emplace_back(folder + name + "/mm_stat");
    }
    return files;
}

} // namespace

struct MemoryCountersReader::Sources {
    std::string root;
    KernelFile memInfo{root + "/proc/meminfo"};
    KernelFile pressure{root + "/proc/pressure/memory"};
    KernelFile arcStats{root + "/proc/spl/kstat/zfs/arcstats", KernelFileKind::records};
    bool hasArcStats = false;
    std::vector<KernelFile> zram = {};
    int readsUntilScan = 0;

    /// Looks for what few machines have: the ZFS module and compressed RAM disks come and go, but
    /// rarely.
    void scan()
    {
        constexpr int readsBetweenScans = 30;
        if (readsUntilScan-- > 0)
            return;
        readsUntilScan = readsBetweenScans;
        hasArcStats = arcStats.read().has_value();
        zram = zramFiles(root);
    }

    std::uint64_t zramBytes()
    {
        std::uint64_t bytes = 0;
        for (KernelFile &file : zram)
            bytes += zramMemory(file.read().value_or(std::string_view()));
        return bytes;
    }
};

MemoryCountersReader::MemoryCountersReader(const std::string &root)
    : m_sources(new Sources{.root = root})
{
}

MemoryCountersReader::~MemoryCountersReader() = default;

MemoryCounters MemoryCountersReader::read()
{
    m_sources->scan();
    return memoryCounters(
        {.memInfo = m_sources->memInfo.read(),
         .pressure = m_sources->pressure.read(),
         .arcStats = m_sources->hasArcStats ? m_sources->arcStats.read() : std::nullopt,
         .zramBytes = m_sources->zramBytes()});
}

} // namespace corvane
