#include "processes/ProcessSource_linux.h"

#include "platform/FileDescriptor.h"
#include "platform/KernelFile_linux.h"
#include "platform/KernelFolder_linux.h"
#include "platform/KernelText.h"
#include "platform/Wipe.h"
#include "processes/ProcessFiles.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <span>

#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

namespace corvane {

namespace {

std::string processFile(std::int32_t pid, const char *name, const std::string &root)
{
    return root + "/proc/" + std::to_string(pid) + '/' + name;
}

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

/// Reads one small file of process after process. That is nearly the whole cost of a pass, so it
/// takes three bare system calls and no allocation.
class StatmReader {
public:
    explicit StatmReader(const KernelFolder &proc) : m_proc(proc.descriptor()) { }

    /// Valid until the next read; empty when the process has ended or may not be inspected.
    std::string_view read(std::int32_t pid)
    {
        constexpr std::string_view name = "/statm";
        char *end = std::to_chars(m_path.data(), m_path.data() + 12, pid).ptr;
        *std::ranges::copy(name, end).out = '\0';
        // Non-blocking, so that a FIFO in the file's place cannot hold the pass up.
        const int file =
            openat(m_proc, m_path.data(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
        if (file < 0)
            return {};
        const ssize_t length = ::read(file, m_text.data(), m_text.size());
        close(file);
        return {m_text.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
    }

private:
    int m_proc;
    std::array<char, 32> m_path = {};
    std::array<char, 256> m_text = {}; ///< Seven counts fit.
};

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

/// The target of a link; empty when it may not be read.
std::string linkTarget(const std::string &path)
{
    std::array<char, PATH_MAX> target = {};
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    return {target.data(), length > 0 ? static_cast<std::size_t>(length) : 0};
}

std::vector<FootprintBounds> listFootprints(const std::string &root)
{
    KernelFolder proc(root + "/proc");
    if (!proc)
        return {};
    const auto pageSize = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    const SwapLimits swap = swapLimits(root);
    const auto pids = listProcesses(proc);
    StatmReader statm(proc);
    std::vector<FootprintBounds> processes;
    processes.reserve(pids.size());
    for (const std::int32_t pid : pids) {
        if (const auto bounds = parseStatm(pid, statm.read(pid), pageSize, swap))
            processes.push_back(*bounds);
    }
    return processes;
}

std::optional<std::uint64_t> readFootprint(const FootprintBounds &bounds, const std::string &root)
{
    const auto status = readKernelFile(processFile(bounds.pid, "status", root));
    const auto swapped = status ? parseSwapped(*status) : std::nullopt;
    if (!swapped)
        return std::nullopt;
    return bounds.least + *swapped;
}

std::optional<std::string> readName(std::int32_t pid, const std::string &root)
{
    const auto comm = readKernelFile(processFile(pid, "comm", root));
    if (!comm)
        return std::nullopt;
    const std::string_view name = parseProcessName(*comm);
    if (!mayBeCut(name))
        return std::string(name);
    return std::string(completedName(name, linkTarget(processFile(pid, "exe", root))));
}

std::optional<ProcessIdentity> identify(std::int32_t pid, const std::string &root)
{
    const auto stat = readKernelFile(processFile(pid, "stat", root));
    const auto startTime = stat ? parseStartTime(*stat) : std::nullopt;
    if (!startTime)
        return std::nullopt;
    return ProcessIdentity{.pid = pid, .startTime = *startTime};
}

std::optional<std::int32_t> readParent(std::int32_t pid, const std::string &root)
{
    const auto stat = readKernelFile(processFile(pid, "stat", root));
    return stat ? parseParent(*stat) : std::nullopt;
}

std::optional<std::string> readFolder(std::int32_t pid, const std::string &root)
{
    std::string folder = linkTarget(processFile(pid, "cwd", root));
    return folder.empty() || !isUtf8(folder) ? std::nullopt : std::optional(std::move(folder));
}

/// The first part of a file that may hold secrets; overwritten at the end of its life.
class ArgumentText {
public:
    explicit ArgumentText(const std::string &path)
    {
        const FileDescriptor file = openRegular(path, FileAccess::read);
        while (file && m_length < longest) {
            const ssize_t count = read(file.get(), m_text.get() + m_length, longest - m_length);
            if (count <= 0)
                return;
            m_length += static_cast<std::size_t>(count);
        }
    }

    ~ArgumentText()
    {
        std::span contents(m_text.get(), m_length);
        wipe(contents);
    }

    ArgumentText(const ArgumentText &) = delete;
    ArgumentText &operator=(const ArgumentText &) = delete;

    /// Without the last argument where the text was cut within it. Empty if it cannot be read.
    std::string_view text() const
    {
        const std::string_view all(m_text.get(), m_length);
        return m_length < longest ? all : all.substr(0, all.rfind('\0') + 1);
    }

private:
    static constexpr std::size_t longest = 256 << 10; ///< A thousand times the usual.

    // Memory that is not written costs nothing: it is asked for uninitialised.
    std::unique_ptr<char[]> m_text = std::make_unique_for_overwrite<char[]>(longest);
    std::size_t m_length = 0;
};

std::optional<ArgumentRecord> readArguments(std::int32_t pid, const std::string &root)
{
    const std::string link = linkTarget(processFile(pid, "exe", root));
    const ArgumentText commandLine(processFile(pid, "cmdline", root));
    if (link.empty() && commandLine.text().empty())
        return std::nullopt;
    auto argv = parseCommandLine(commandLine.text());
    if (!argv)
        return std::nullopt;
    const std::string_view path = executablePath(link);
    return ArgumentRecord{.path = std::string(isUtf8(path) ? path : std::string_view()),
                          .argv = std::move(*argv)};
}

} // namespace

ProcessSource linuxProcesses(const std::string &root)
{
    return {
        .footprints = [root] { return listFootprints(root); },
        .footprint = [root](const FootprintBounds &bounds) { return readFootprint(bounds, root); },
        .name = [root](std::int32_t pid) { return readName(pid, root); },
        .identity = [root](std::int32_t pid) { return identify(pid, root); },
        .arguments = [root](std::int32_t pid) { return readArguments(pid, root); },
        .parent = [root](std::int32_t pid) { return readParent(pid, root); },
        .folder = [root](std::int32_t pid) { return readFolder(pid, root); },
    };
}

ProcessSource ProcessSource::system()
{
    return linuxProcesses("/");
}

} // namespace corvane
