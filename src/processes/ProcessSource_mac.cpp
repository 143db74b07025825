#include "processes/ProcessSource.h"

#include "platform/KernelText.h"
#include "platform/Wipe.h"

#include <libproc.h>
#include <sys/resource.h>
#include <sys/sysctl.h>

#include <algorithm>
#include <array>
#include <memory>
#include <new>
#include <span>

#include <string.h>

namespace corvane {

namespace {

/// Memory for the kernel to fill; null when the allocation failed.
template <typename Item>
std::unique_ptr<Item[]> zeroedBuffer(std::size_t count)
{
    return std::unique_ptr<Item[]>(new (std::nothrow) Item[count]());
}

/// Physical footprint in bytes; 0 when the process may not be inspected.
std::uint64_t footprint(pid_t pid)
{
    rusage_info_v4 usage = {};
    if (proc_pid_rusage(pid, RUSAGE_INFO_V4, reinterpret_cast<rusage_info_t *>(&usage)) != 0)
        return 0;
    return usage.ri_phys_footprint;
}

std::vector<FootprintBounds> listFootprints()
{
    const int size = proc_listpids(PROC_ALL_PIDS, 0, nullptr, 0);
    const std::size_t places = size > 0 ? static_cast<std::size_t>(size) / sizeof(pid_t) : 0;
    if (places == 0)
        return {};
    const auto pids = zeroedBuffer<pid_t>(places);
    if (!pids)
        return {};
    const int filled =
        proc_listpids(PROC_ALL_PIDS, 0, pids.get(), static_cast<int>(places * sizeof(pid_t)));
    const std::size_t count = filled > 0 ? static_cast<std::size_t>(filled) / sizeof(pid_t) : 0;

    std::vector<FootprintBounds> processes;
    processes.reserve(std::min(count, places));
    for (std::size_t place = 0; place < std::min(count, places); ++place) {
        const pid_t pid = pids[place];
        const std::uint64_t memory = pid > 0 ? footprint(pid) : 0;
        if (memory > 0)
            processes.push_back({.pid = pid, .least = memory, .most = memory});
    }
    return processes;
}

std::optional<std::string> readName(std::int32_t pid)
{
    std::array<char, 256> name = {};
    if (proc_name(pid, name.data(), static_cast<std::uint32_t>(name.size())) <= 0)
        return std::nullopt;
    return std::string(name.data(), strnlen(name.data(), name.size()));
}

std::optional<std::int32_t> readParent(std::int32_t pid)
{
    proc_bsdinfo info = {};
    if (proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &info, sizeof info) != sizeof info)
        return std::nullopt;
    return static_cast<std::int32_t>(info.pbi_ppid);
}

std::optional<std::string> readFolder(std::int32_t pid)
{
    proc_vnodepathinfo info = {};
    if (proc_pidinfo(pid, PROC_PIDVNODEPATHINFO, 0, &info, sizeof info) != sizeof info)
        return std::nullopt;
    const char *path = info.pvi_cdir.vip_path;
    std::string folder(path, strnlen(path, sizeof info.pvi_cdir.vip_path));
    return folder.empty() || !isUtf8(folder) ? std::nullopt : std::optional(std::move(folder));
}

std::optional<ArgumentRecord> readArguments(std::int32_t pid)
{
    std::array<int, 3> query = {CTL_KERN, KERN_PROCARGS2, pid};
    const auto queryLength = static_cast<unsigned>(query.size());
    std::size_t room = 0;
    if (sysctl(query.data(), queryLength, nullptr, &room, nullptr, 0) != 0 || room == 0)
        return std::nullopt;
    const auto block = zeroedBuffer<char>(room);
    std::size_t size = room;
    if (!block || sysctl(query.data(), queryLength, block.get(), &size, nullptr, 0) != 0)
        return std::nullopt;
    std::span contents(block.get(), std::min(size, room));
    auto record = parseArgumentBlock({contents.data(), contents.size()});
    wipe(contents);
    return record;
}

} // namespace

ProcessSource ProcessSource::system()
{
    return {
        .footprints = listFootprints,
        // The kernel has counted compressed and swapped memory already.
        .footprint = [](const FootprintBounds &bounds) { return std::optional(bounds.least); },
        .name = readName,
        // The kernel gives a number anew only after all the others.
        .identity = [](std::int32_t pid) { return std::optional(ProcessIdentity{.pid = pid}); },
        .arguments = readArguments,
        .parent = readParent,
        .folder = readFolder,
    };
}

} // namespace corvane
