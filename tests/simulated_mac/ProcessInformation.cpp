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
