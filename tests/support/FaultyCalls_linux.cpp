#include "support/FaultyCalls.h"

#include "threads/Mutex.h"

#include <algorithm>
#include <array>
#include <climits>
#include <list>
#include <optional>
#include <utility>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

// The linker directs calls of our objects to __wrap_NAME; __real_NAME is the library's function.
extern "C" {
int __real_open(const char *path, int flags, ...);
int __real_openat(int folder, const char *path, int flags, ...);
ssize_t __real_read(int file, void *into, size_t size);
ssize_t __real_pread(int file, void *into, size_t size, off_t offset);
ssize_t __real_write(int file, const void *from, size_t size);
int __real_fsync(int file);
int __real_rename(const char *from, const char *to);
int __real_flock(int file, int operation);
}

namespace corvane::test {

namespace {

struct Fault {
    FaultyCalls::Call call = {};
    std::string file;
    int times = 1;
    int error = 0;
    bool stalls = false;
    std::optional<std::size_t> mostBytes = {};
    std::optional<FaultyCalls::Moment> death = {};
};

struct Plan {
    Mutex mutex = {};
    Condition changed = {};
    std::list<Fault> faults GUARDED_BY(mutex) = {};
    int stalled GUARDED_BY(mutex) = 0;
    bool lettingGo GUARDED_BY(mutex) = false;
};

/// Never destroyed, because threads may outlive `main`.
Plan &plan()
{
    static auto *made = new Plan;
    return *made;
}

thread_local std::vector<std::string> openedHere = {};

void add(Fault fault)
{
    Plan &all = plan();
    const MutexLock lock(all.mutex);
    all.faults.push_front(std::move(fault));
}

/// The fault that applies to this call, which uses it up once; waits here if the fault is a stall.
Fault takeFault(FaultyCalls::Call call, const std::string &path)
{
    Plan &all = plan();
    MutexLock lock(all.mutex);
    const auto found = std::ranges::find_if(all.faults, [&](const Fault &fault) {
        return fault.call == call && path.ends_with(fault.file);
    });
    if (found == all.faults.end())
        return {};
    Fault fault = *found;
    if (found->times != FaultyCalls::forEver && --found->times == 0)
        all.faults.erase(found);
    if (fault.stalls) {
        ++all.stalled;
        all.lettingGo = false;
        all.changed.notifyAll();
        while (!all.lettingGo)
            all.changed.wait(lock);
        --all.stalled;
    }
    return fault;
}

bool hasFaults()
{
    Plan &all = plan();
    const MutexLock lock(all.mutex);
    return !all.faults.empty();
}

Fault takeFault(FaultyCalls::Call call, int file)
{
    if (!hasFaults())
        return {};
    std::array<char, PATH_MAX> path = {};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = readlink(link.c_str(), path.data(), path.size());
    return length > 0 ? takeFault(call, std::string(path.data(), static_cast<std::size_t>(length)))
                      : Fault();
}

void killIf(bool condition)
{
    if (condition)
        kill(getpid(), SIGKILL);
}

/// The result of the call, which is made unless it has to fail.
template <typename MakeCall>
auto outcome(const Fault &fault, MakeCall makeCall)
{
    using FaultyCalls::Moment;
    killIf(fault.death == Moment::before);
    if (fault.error != 0) {
        errno = fault.error;
        return decltype(makeCall())(-1);
    }
    const auto result = makeCall();
    killIf(fault.death == Moment::after);
    return result;
}

Fault takeFaultOfOpening(const std::string &path)
{
    openedHere.push_back(path);
    return takeFault(FaultyCalls::Call::open, path);
}

} // namespace

std::vector<std::string> FaultyCalls::takeOpenedHere()
{
    return std::exchange(openedHere, {});
}

void FaultyCalls::fail(Call call, const std::string &file, int error, int times)
{
    add({.call = call, .file = file, .times = times, .error = error});
}

void FaultyCalls::cutNextWrite(const std::string &file, std::size_t bytes)
{
    add({.call = Call::write, .file = file, .mostBytes = bytes});
}

void FaultyCalls::letPass(Call call, const std::string &file, int times)
{
    add({.call = call, .file = file, .times = times});
}

void FaultyCalls::killAt(Call call, const std::string &file, Moment moment)
{
    add({.call = call, .file = file, .death = moment});
}

void FaultyCalls::killInNextWrite(const std::string &file, std::size_t bytes)
{
    add({.call = Call::write, .file = file, .mostBytes = bytes, .death = Moment::after});
}

void FaultyCalls::stall(Call call, const std::string &file)
{
    add({.call = call, .file = file, .stalls = true});
}

void FaultyCalls::waitForStalled()
{
    Plan &all = plan();
    MutexLock lock(all.mutex);
    while (all.stalled == 0)
        all.changed.wait(lock);
}

void FaultyCalls::letGo()
{
    Plan &all = plan();
    const MutexLock lock(all.mutex);
    all.lettingGo = true;
    all.changed.notifyAll();
}

void FaultyCalls::clear()
{
    {
        Plan &all = plan();
        const MutexLock lock(all.mutex);
        all.faults.clear();
    }
    letGo();
}

} // namespace corvane::test

using namespace corvane::test;
using Call = FaultyCalls::Call;

extern "C" {

int __wrap_open(const char *path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return outcome(takeFaultOfOpening(path), [&] { return __real_open(path, flags, mode); });
}

int __wrap_openat(int folder, const char *path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return outcome(takeFaultOfOpening(path),
                   [&] { return __real_openat(folder, path, flags, mode); });
}

ssize_t __wrap_read(int file, void *into, size_t size)
{
    return outcome(takeFault(Call::read, file), [&] { return __real_read(file, into, size); });
}

ssize_t __wrap_pread(int file, void *into, size_t size, off_t offset)
{
    return outcome(takeFault(Call::read, file),
                   [&] { return __real_pread(file, into, size, offset); });
}

ssize_t __wrap_write(int file, const void *from, size_t size)
{
    const Fault fault = takeFault(Call::write, file);
    return outcome(fault, [&] {
        return __real_write(file, from, std::min(size, fault.mostBytes.value_or(size)));
    });
}

int __wrap_fsync(int file)
{
    return outcome(takeFault(Call::sync, file), [&] { return __real_fsync(file); });
}

int __wrap_rename(const char *from, const char *to)
{
    return outcome(takeFault(Call::rename, std::string(to)),
                   [&] { return __real_rename(from, to); });
}

int __wrap_flock(int file, int operation)
{
    return outcome(takeFault(Call::lock, file), [&] { return __real_flock(file, operation); });
}

} // extern "C"
