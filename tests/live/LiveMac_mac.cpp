#include "live/LiveMac.h"

#include "platform/BootClock.h"

#include <sys/sysctl.h>

#include <thread>

namespace corvane::test {

LiveMac::LiveMac(const std::vector<std::string> &) { }

bool LiveMac::isVirtualMachine() const
{
    int present = 0;
    std::size_t size = sizeof present;
    return sysctlbyname("kern.hv_vmm_present", &present, &size, nullptr, 0) == 0 && present != 0;
}

std::uint64_t LiveMac::memoryBytes() const
{
    std::uint64_t bytes = 0;
    std::size_t size = sizeof bytes;
    sysctlbyname("hw.memsize", &bytes, &size, nullptr, 0);
    return bytes;
}

std::size_t LiveMac::logicalCores() const
{
    return std::thread::hardware_concurrency();
}

void LiveMac::workForASecond() const
{
    const double end = seconds() + 1;
    while (seconds() < end) { }
}

double LiveMac::seconds()
{
    return secondsSinceBoot();
}

} // namespace corvane::test
