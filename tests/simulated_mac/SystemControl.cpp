#include "simulated_mac/SimulatedMac.h"

#include <sys/sysctl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>

using namespace corvane::simulated;

namespace {

using Bytes = std::vector<std::uint8_t>;

template <typename Value>
Bytes bytesOf(const Value &value)
{
    Bytes bytes(sizeof value);
    std::memcpy(bytes.data(), &value, sizeof value);
    return bytes;
}

std::optional<Bytes> controlNamed(std::string_view name)
{
    const Machine &machine = mac().machine;
    if (name == "hw.memsize")
        return bytesOf(machine.memoryBytes);
    if (name == "kern.memorystatus_vm_pressure_level")
        return bytesOf(machine.pressureLevel);
    if (name == "iogpu.wired_limit_mb" && machine.gpuLimitMebibytes)
        return bytesOf(*machine.gpuLimitMebibytes);
    if (name == "machdep.cpu.brand_string") // With its closing NUL.
        return Bytes(machine.brand.c_str(), machine.brand.c_str() + machine.brand.size() + 1);
    if (name != "vm.swapusage")
        return std::nullopt;
    xsw_usage usage = {};
    usage.xsu_total = machine.swapTotal;
    usage.xsu_avail = machine.swapTotal - machine.swapUsed;
    usage.xsu_used = machine.swapUsed;
    usage.xsu_pagesize = static_cast<std::uint32_t>(machine.pageSize);
    usage.xsu_encrypted = 1;
    return bytesOf(usage);
}

int failure(int error)
{
    errno = error;
    return -1;
}

/// Hands a value out by the rules of the interface: its size without a buffer, otherwise all of it
/// or, where the interface cuts, as much as fits.
int answer(Bytes value, void *buffer, std::size_t *size, std::optional<Way> fault, bool cuts)
{
    if (fault == Way::shortAnswer)
        value.resize(value.size() / 2);
    if (fault == Way::garbage)
        std::generate(value.begin(), value.end(),
                      [] { return static_cast<std::uint8_t>(faults().garbage()); });
    if (!buffer) {
        *size = value.size();
        return 0;
    }
    if (*size < value.size() && !cuts)
        return failure(ENOMEM);
    *size = std::min(*size, value.size());
    std::copy_n(value.begin(), *size, static_cast<std::uint8_t *>(buffer));
    return 0;
}

} // namespace

int sysctlbyname(const char *name, void *oldValue, std::size_t *oldLength, void *newValue,
                 std::size_t newLength)
{
    const auto fault = faults().ask(Call::sysctlbyname);
    auto value = controlNamed(name);
    if (!value || fault == Way::error)
        return failure(ENOENT);
    if (newValue || newLength != 0)
        return failure(EPERM);
    return answer(std::move(*value), oldValue, oldLength, fault, false);
}

int sysctl(int *name, u_int nameLength, void *oldValue, std::size_t *oldLength, void *newValue,
           std::size_t newLength)
{
    const auto fault = faults().ask(Call::sysctl);
    if (newValue || newLength != 0)
        return failure(EPERM);
    if (nameLength != 3 || name[0] != CTL_KERN || name[1] != KERN_PROCARGS2)
        return failure(ENOENT);
    const corvane::MutexLock lock(mac().processesMutex);
    for (const Process &process : mac().machine.processes) {
        if (process.pid != name[2] || !process.inspectable || fault == Way::error)
            continue;
        Bytes block = process.arguments;
        constexpr std::size_t slack = 4; // A request for the size alone returns somewhat more.
        if (!oldValue)
            block.resize(block.size() + slack);
        return answer(std::move(block), oldValue, oldLength, fault, true);
    }
    return failure(EINVAL);
}
