#include "memory/MemoryFiles_linux.h"

#include "memory/ProcMemInfo.h"
#include "platform/KernelFile_linux.h"
#include "platform/KernelFolder_linux.h"

#include <memory>
#include <utility>
#include <vector>

namespace corvane {

namespace {

/// The ZFS cache frees gigabytes within seconds. What compressed disks hold changes slowly.
constexpr int readsPerCacheRequest = 2;
constexpr int readsPerRequest = 6;

/// Seconds. Two requests, and half a second for a tick that is late.
constexpr double oldestSlow = 12.5;

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

std::optional<std::string> textOf(KernelFile &file)
{
    const auto text = file.read();
    return text ? std::optional<std::string>(*text) : std::nullopt;
}

} // namespace

/// Created and used on the reader's thread.
class MemoryFiles::SlowFiles {
public:
    explicit SlowFiles(const std::string &root)
        : m_root(root),
          m_arcStats(root + "/proc/spl/kstat/zfs/arcstats", KernelFileKind::records)
    {
    }

    SlowTexts read()
    {
        scan();
        return {.arcStats = m_hasArcStats ? textOf(m_arcStats) : std::nullopt,
                .zramBytes = zramBytes()};
    }

private:
    /// Looks for what few machines have: the ZFS module and compressed RAM disks come and go, but
    /// rarely.
    void scan()
    {
        constexpr int readsBetweenScans = 8;
        if (m_readsUntilScan-- > 0)
            return;
        m_readsUntilScan = readsBetweenScans;
        m_hasArcStats = m_arcStats.read().has_value();
        m_zram = zramFiles(m_root);
    }

    std::uint64_t zramBytes()
    {
        std::uint64_t bytes = 0;
        for (KernelFile &file : m_zram)
            bytes += zramMemory(file.read().value_or(std::string_view()));
        return bytes;
    }

    std::string m_root;
    KernelFile m_arcStats;
    bool m_hasArcStats = false;
    std::vector<KernelFile> m_zram = {};
    int m_readsUntilScan = 0;
};

MemoryFiles::MemoryFiles(std::string root, std::function<double()> now, ReaderPatience patience)
    : m_now(std::move(now)),
      m_memInfo(root + "/proc/meminfo", m_now),
      m_pressure(root + "/proc/pressure/memory", m_now),
      m_patience(patience),
      m_slow(
          [root = std::move(root)] {
              return [files = std::make_shared<SlowFiles>(root)](double) { return files->read(); };
          },
          oldestSlow)
{
}

MemoryCounters MemoryFiles::read()
{
    m_thread.check();
    const SlowTexts slow = slowTexts(m_now());
    return memoryCounters({.memInfo = m_memInfo.read(),
                           .pressure = m_pressure.read(),
                           .arcStats = slow.arcStats,
                           .zramBytes = slow.zramBytes});
}

MemoryFiles::SlowTexts MemoryFiles::slowTexts(double now)
{
    const bool isDue = m_readsUntilRequest-- <= 0;
    if (isDue)
        m_slow.request(now, m_patience);
    SlowTexts texts = m_slow.newest(now).value_or(SlowTexts());
    if (isDue)
        m_readsUntilRequest = (texts.arcStats ? readsPerCacheRequest : readsPerRequest) - 1;
    return texts;
}

} // namespace corvane
