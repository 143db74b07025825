#include "simulated_mac/SimulatedMac.h"

#include <libproc.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

using namespace corvane::simulated;

namespace {

constexpr int pidSize = sizeof(int);

int refusal(int error, int result)
{
    errno = error;
    return result;
}

/// The process with this id that the caller may look at. The list must be locked.
const Process *inspectable(int pid)
{
    const auto &processes = mac().machine.processes;
    const auto found = std::find_if(processes.begin(), processes.end(),
                                    [pid](const Process &process) { return process.pid == pid; });
    return found == processes.end() || !found->inspectable ? nullptr : &*found;
}

constexpr int firstDescriptor = 3;
constexpr std::uint64_t firstAddress = 0x100000000;

template <typename Info>
int answer(const Info &info, void *buffer, int bufferSize)
{
    if (bufferSize < static_cast<int>(sizeof info))
        return refusal(ENOMEM, 0);
    std::memcpy(buffer, &info, sizeof info);
    return sizeof info;
}

/// A path as the kernel cuts it.
void putPath(vnode_info_path &info, const std::string &path)
{
    const std::string cut = path.substr(0, sizeof info.vip_path - 1);
    std::memcpy(info.vip_path, cut.c_str(), cut.size() + 1);
}

int listDescriptors(const Process &process, void *buffer, int bufferSize)
{
    constexpr int size = sizeof(proc_fdinfo);
    const int count = static_cast<int>(process.openFiles.size());
    if (!buffer)
        return (count + 20) * size;
    const int listed = std::min(count, bufferSize / size);
    auto *list = static_cast<proc_fdinfo *>(buffer);
    for (int i = 0; i < listed; ++i)
        list[i] = {.proc_fd = firstDescriptor + i, .proc_fdtype = PROX_FDTYPE_VNODE};
    return listed * size;
}

/// The mapping at that address, or the first behind it.
int describeRegion(const Process &process, std::uint64_t address, void *buffer, int bufferSize)
{
    std::uint64_t start = firstAddress;
    for (const Process::Mapping &mapping : process.mappings) {
        if (start + mapping.size > address) {
            proc_regionwithpathinfo info = {};
            info.prp_prinfo.pri_address = start;
            info.prp_prinfo.pri_size = mapping.size;
            putPath(info.prp_vip, mapping.path);
            return answer(info, buffer, bufferSize);
        }
        start += mapping.size;
    }
    return refusal(EINVAL, 0);
}

} // namespace

int proc_listpids(std::uint32_t type, std::uint32_t, void *buffer, int bufferSize)
{
    constexpr int room = 20; // Processes that may appear before the second call.
    const auto fault = faults().ask(Call::proc_listpids);
    if (type != PROC_ALL_PIDS || fault == Way::error)
        return refusal(EINVAL, 0);
    const corvane::MutexLock lock(mac().processesMutex);
    const auto &processes = mac().machine.processes;
    if (!buffer)
        return (static_cast<int>(processes.size()) + room) * pidSize;
    if (bufferSize < pidSize)
        return refusal(ENOMEM, 0);
    if (fault == Way::shortAnswer)
        return pidSize - 1;
    const int count = std::min(static_cast<int>(processes.size()), bufferSize / pidSize);
    auto *pids = static_cast<int *>(buffer);
    for (int index = 0; index < count; ++index)
        pids[index] = fault ? static_cast<int>(faults().garbage())
                            : processes[static_cast<std::size_t>(index)].pid;
    return count * pidSize;
}

int proc_pid_rusage(int pid, int flavor, rusage_info_t *buffer)
{
    const auto fault = faults().ask(Call::proc_pid_rusage);
    const corvane::MutexLock lock(mac().processesMutex);
    const Process *process = inspectable(pid);
    if (flavor != RUSAGE_INFO_V4 || !process || fault == Way::error)
        return refusal(EPERM, -1);
    rusage_info_v4 usage = {};
    usage.ri_resident_size = 0xbad0006; // Not the footprint.
    usage.ri_phys_footprint = fault ? std::uint64_t(faults().garbage()) << 32 : process->footprint;
    std::memcpy(static_cast<void *>(buffer), &usage, sizeof usage);
    return 0;
}

int proc_name(int pid, void *buffer, std::uint32_t bufferSize)
{
    constexpr std::uint32_t smallestBuffer = 32;
    constexpr std::size_t longestName = 31;
    const auto fault = faults().ask(Call::proc_name);
    if (bufferSize < smallestBuffer)
        return refusal(ENOMEM, 0);
    const corvane::MutexLock lock(mac().processesMutex);
    const Process *process = inspectable(pid);
    if (!process || fault == Way::error)
        return refusal(ESRCH, 0);
    const std::string name =
        fault ? std::string("\xff\xfe\x80") : process->name.substr(0, longestName);
    std::memcpy(buffer, name.c_str(), name.size() + 1);
    return static_cast<int>(name.size());
}

int proc_pidinfo(int pid, int flavor, std::uint64_t argument, void *buffer, int bufferSize)
{
    const auto fault = faults().ask(Call::proc_pidinfo);
    const corvane::MutexLock lock(mac().processesMutex);
    const Process *process = inspectable(pid);
    if (!process || fault == Way::error)
        return refusal(EPERM, 0);
    switch (flavor) {
    case PROC_PIDTBSDINFO: {
        proc_bsdinfo info = {};
        info.pbi_ppid = fault ? static_cast<std::uint32_t>(faults().garbage())
                              : static_cast<std::uint32_t>(process->parent);
        return answer(info, buffer, bufferSize);
    }
    case PROC_PIDVNODEPATHINFO: {
        proc_vnodepathinfo info = {};
        putPath(info.pvi_cdir, fault ? std::string("\xff\xfe") : process->folder);
        return answer(info, buffer, bufferSize);
    }
    case PROC_PIDLISTFDS:
        return listDescriptors(*process, buffer, bufferSize);
    case PROC_PIDREGIONPATHINFO:
        return describeRegion(*process, argument, buffer, bufferSize);
    default:
        return refusal(EINVAL, 0);
    }
}

int proc_pidfdinfo(int pid, int descriptor, int flavor, void *buffer, int bufferSize)
{
    const auto fault = faults().ask(Call::proc_pidfdinfo);
    const corvane::MutexLock lock(mac().processesMutex);
    const Process *process = inspectable(pid);
    const auto place = static_cast<std::size_t>(descriptor - firstDescriptor);
    if (!process || flavor != PROC_PIDFDVNODEPATHINFO || place >= process->openFiles.size()
        || fault == Way::error)
        return refusal(EBADF, 0);
    vnode_fdinfowithpath info = {};
    putPath(info.pvip, fault ? std::string("\xff\xfe") : process->openFiles[place]);
    return answer(info, buffer, bufferSize);
}
