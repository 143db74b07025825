#include "memory/MemoryFiles_linux.h"

#include "memory/ProcMemInfo.h"
#include "platform/KernelFolder_linux.h"

#include <utility>

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

MemoryFiles::MemoryFiles(std::string root)
    : m_root(std::move(root)),
      m_memInfo(m_root + "/proc/meminfo"),
      m_pressure(m_root + "/proc/pressure/memory"),
      m_arcStats(m_root + "/proc/spl/kstat/zfs/arcstats", KernelFileKind::records)
{
}

MemoryCounters MemoryFiles::read()
{
    m_thread.check();
    scan();
    return memoryCounters({.memInfo = m_memInfo.read(),
                           .pressure = m_pressure.read(),
                           .arcStats = m_hasArcStats ? m_arcStats.read() : std::nullopt,
                           .zramBytes = zramBytes()});
}

/// Looks for what few machines have: the ZFS module and compressed RAM disks come and go, but
/// rarely.
void MemoryFiles::scan()
{
    constexpr int readsBetweenScans = 30;
    if (m_readsUntilScan-- > 0)
        return;
    m_readsUntilScan = readsBetweenScans;
    m_hasArcStats = m_arcStats.read().has_value();
    m_zram = zramFiles(m_root);
}

std::uint64_t MemoryFiles::zramBytes()
{
    std::uint64_t bytes = 0;
    for (KernelFile &file : m_zram)
        bytes += zramMemory(file.read().value_or(std::string_view()));
    return bytes;
}

} // namespace corvane
