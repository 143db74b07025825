#include "support/FaultyCalls.h"

#include <algorithm>
#include <array>
#include <climits>
#include <condition_variable>
#include <list>
#include <mutex>
#include <optional>

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

// The linker sends the calls of our objects to __wrap_NAME and gives the library's as __real_NAME.
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
    std::mutex mutex = {};
    std::condition_variable changed = {};
    std::list<Fault> faults = {}; ///< Guarded by mutex, as are the next two.
    int stalled = 0;
    bool lettingGo = false;
};

/// Never destroyed: threads may outlive `main`.
Plan &plan()
{
    static auto *made = new Plan;
    return *made;
}

void add(Fault fault)
{
    const std::lock_guard lock(plan().mutex);
    plan().faults.push_front(std::move(fault));
}

/// What is to happen to this call, which is counted; waits if it is to stall.
Fault meet(FaultyCalls::Call call, const std::string &path)
{
    std::unique_lock lock(plan().mutex);
    auto &faults = plan().faults;
    const auto found = std::ranges::find_if(faults, [&](const Fault &fault) {
        return fault.call == call && path.ends_with(fault.file);
    });
    if (found == faults.end())
        return {};
    const Fault met = *found;
    if (found->times != FaultyCalls::forEver && --found->times == 0)
        faults.erase(found);
    if (met.stalls) {
        ++plan().stalled;
        plan().lettingGo = false;
        plan().changed.notify_all();
        plan().changed.wait(lock, [] { return plan().lettingGo; });
        --plan().stalled;
    }
    return met;
}

bool anyPlanned()
{
    const std::lock_guard lock(plan().mutex);
    return !plan().faults.empty();
}

Fault meet(FaultyCalls::Call call, int file)
{
    if (!anyPlanned())
        return {};
    std::array<char, PATH_MAX> path = {};
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = readlink(link.c_str(), path.data(), path.size());
    return length > 0 ? meet(call, std::string(path.data(), static_cast<std::size_t>(length)))
                      : Fault();
}

void dieIf(bool isTime)
{
    if (isTime)
        kill(getpid(), SIGKILL);
}

/// What the call returns, which is made unless it is to fail.
template <typename MakeCall>
auto outcome(const Fault &fault, MakeCall makeCall)
{
    using FaultyCalls::Moment;
    dieIf(fault.death == Moment::before);
    if (fault.error != 0) {
        errno = fault.error;
        return decltype(makeCall())(-1);
    }
    const auto result = makeCall();
    dieIf(fault.death == Moment::after);
    return result;
}

} // namespace

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
    std::unique_lock lock(plan().mutex);
    plan().changed.wait(lock, [] { return plan().stalled > 0; });
}

void FaultyCalls::letGo()
{
    const std::lock_guard lock(plan().mutex);
    plan().lettingGo = true;
    plan().changed.notify_all();
}

void FaultyCalls::clear()
{
    {
        const std::lock_guard lock(plan().mutex);
        plan().faults.clear();
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
    return outcome(meet(Call::open, std::string(path)),
                   [&] { return __real_open(path, flags, mode); });
}

int __wrap_openat(int folder, const char *path, int flags, ...)
{
    va_list rest;
    va_start(rest, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(rest, mode_t) : 0;
    va_end(rest);
    return outcome(meet(Call::open, std::string(path)),
                   [&] { return __real_openat(folder, path, flags, mode); });
}

ssize_t __wrap_read(int file, void *into, size_t size)
{
    return outcome(meet(Call::read, file), [&] { return __real_read(file, into, size); });
}

ssize_t __wrap_pread(int file, void *into, size_t size, off_t offset)
{
    return outcome(meet(Call::read, file), [&] { return __real_pread(file, into, size, offset); });
}

ssize_t __wrap_write(int file, const void *from, size_t size)
{
    const Fault fault = meet(Call::write, file);
    return outcome(fault, [&] {
        return __real_write(file, from, std::min(size, fault.mostBytes.value_or(size)));
    });
}

int __wrap_fsync(int file)
{
    return outcome(meet(Call::sync, file), [&] { return __real_fsync(file); });
}

int __wrap_rename(const char *from, const char *to)
{
    return outcome(meet(Call::rename, std::string(to)), [&] { return __real_rename(from, to); });
}

int __wrap_flock(int file, int operation)
{
    return outcome(meet(Call::lock, file), [&] { return __real_flock(file, operation); });
}

} // extern "C"
