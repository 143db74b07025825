#include "processes/KeptProcesses_linux.h"

#include "platform/KernelFile_linux.h"
#include "platform/KernelFolder_linux.h"
#include "platform/KernelText.h"
#include "processes/ProcessFiles.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include <cerrno>
#include <fcntl.h>
#include <limits.h>
#include <sys/resource.h>
#include <unistd.h>

namespace corvane {

namespace {

/// The processes in the order of their numbers, which is the kernel's. One that the folder shows
/// twice, since processes come and go meanwhile, counts once.
std::vector<std::int32_t> listProcesses(KernelFolder &proc)
{
    std::vector<std::int32_t> pids;
    while (const char *name = proc.nextName()) {
        const auto pid = parseUnsigned(name);
        if (pid && *pid > 0 && *pid <= INT_MAX)
            pids.push_back(static_cast<std::int32_t>(*pid));
    }
    std::ranges::sort(pids);
    pids.erase(std::unique(pids.begin(), pids.end()), pids.end());
    return pids;
}

SwapLimits swapLimits(const std::string &root)
{
    SwapLimits swap;
    if (const auto memInfo = readKernelFile(root + "/proc/meminfo"))
        swap.inUse = parseSwapInUse(*memInfo);
    if (swap.inUse > 0) {
        // Pages are merged from the second scan on (the kernel's document "ksm").
        const auto scans = readKernelFile(root + "/sys/kernel/mm/ksm/full_scans");
        swap.pagesMerged = scans && trimmed(*scans) != "0";
    }
    return swap;
}

/// Half of what the limit leaves beside the files of all the rest of the program. The kernel keeps
/// a page for every file that was read, so there is an end to it.
std::size_t mostKept()
{
    constexpr rlim_t others = 256;
    constexpr rlim_t most = 8192;
    rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur <= others)
        return 0;
    return std::min((limit.rlim_cur - others) / 2, most);
}

} // namespace

void KeptProcesses::closeFiles(Process &process)
{
    process.statm = {};
    process.comm = {};
}

KeptProcesses::KeptProcesses(std::string root) : m_root(std::move(root)) { }

std::vector<FootprintBounds> KeptProcesses::footprints()
{
    const MutexLock lock(m_mutex);
    KernelFolder proc(m_root + "/proc");
    const auto pids = listProcesses(proc);
    const auto pageSize = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    const SwapLimits swap = swapLimits(m_root);
    m_most = mostKept();
    m_names = 0;
    std::swap(m_before, m_kept); // Which is empty between passes.
    auto next = m_before.begin();
    std::vector<FootprintBounds> processes;
    processes.reserve(pids.size());
    for (const std::int32_t pid : pids) {
        for (; next != m_before.end() && next->pid < pid; ++next)
            closeFiles(*next); // It has ended.
        Process process{.pid = pid};
        if (next != m_before.end() && next->pid == pid)
            process = std::exchange(*next++, {});
        if (const auto bounds =
                parseStatm(pid, readStatm(proc.descriptor(), pid, process), pageSize, swap))
            processes.push_back(*bounds);
        keep(std::move(process));
    }
    m_before.clear();
    return processes;
}

/// Opens the file where it is not open, or where it is that of an earlier process.
std::string_view KeptProcesses::readStatm(int folder, std::int32_t pid, Process &process)
{
    if (process.statm) {
        if (const std::string_view text = readText(process.statm); !text.empty())
            return text;
        process = {.pid = pid};
    }
    process.statm = openIn(folder, pid, "/statm");
    const std::string_view text = readText(process.statm);
    if (text.empty())
        process.statm = {};
    return text;
}

/// Valid until the next read; empty when the process has ended.
std::string_view KeptProcesses::readText(const FileDescriptor &file)
{
    const ssize_t length = file ? pread(file.get(), m_text.data(), m_text.size(), 0) : 0;
    return {m_text.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

/// Where no descriptor is left, those that are kept make room.
FileDescriptor KeptProcesses::openIn(int folder, std::int32_t pid, std::string_view file)
{
    std::array<char, 32> path = {};
    char *end = std::to_chars(path.data(), path.data() + 12, pid).ptr;
    *std::ranges::copy(file, end).out = '\0';
    // Non-blocking, so that a FIFO in the file's place cannot hold the pass up.
    const auto open = [folder, &path] {
        return FileDescriptor(
            openat(folder, path.data(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    };
    FileDescriptor opened = open();
    if (opened || (errno != EMFILE && errno != ENFILE) || m_most == 0)
        return opened;
    m_most = 0;
    m_names = 0;
    std::ranges::for_each(m_before, closeFiles);
    m_kept.clear();
    return open();
}

void KeptProcesses::keep(Process process)
{
    if (!process.statm || !hasRoom())
        return;
    m_names += process.comm ? 1 : 0;
    m_kept.push_back(std::move(process));
}

bool KeptProcesses::hasRoom() const
{
    return m_kept.size() + m_names < m_most;
}

KeptProcesses::Process *KeptProcesses::find(std::int32_t pid)
{
    const auto found = std::ranges::lower_bound(m_kept, pid, {}, &Process::pid);
    return found != m_kept.end() && found->pid == pid ? &*found : nullptr;
}

std::optional<std::string> KeptProcesses::comm(std::int32_t pid)
{
    const MutexLock lock(m_mutex);
    Process *process = find(pid);
    if (process && !process->comm && hasRoom()) {
        process->comm = openRegular(path(pid, "comm"), FileAccess::read);
        m_names += process->comm ? 1 : 0;
    }
    if (process) {
        if (const std::string_view text = readText(process->comm); !text.empty())
            return std::string(text);
    }
    return readKernelFile(path(pid, "comm"));
}

std::optional<ProcessIdentity> KeptProcesses::identity(std::int32_t pid)
{
    const MutexLock lock(m_mutex);
    Process *process = find(pid);
    if (process && process->startTime)
        return ProcessIdentity{.pid = pid, .startTime = *process->startTime};
    const auto stat = readKernelFile(path(pid, "stat"));
    const auto startTime = stat ? parseStartTime(*stat) : std::nullopt;
    if (!startTime)
        return std::nullopt;
    // If the kept process is still there now, the file was its own.
    if (process && !readText(process->statm).empty())
        process->startTime = startTime;
    return ProcessIdentity{.pid = pid, .startTime = *startTime};
}

void KeptProcesses::close()
{
    const MutexLock lock(m_mutex);
    m_kept.clear();
    m_kept.shrink_to_fit();
    m_names = 0;
}

std::string KeptProcesses::path(std::int32_t pid, const char *file) const
{
    return m_root + "/proc/" + std::to_string(pid) + '/' + file;
}

} // namespace corvane
