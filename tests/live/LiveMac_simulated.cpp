#include "live/LiveMac.h"

#include "simulated_mac/SimulatedMac.h"

#include <unistd.h>

namespace corvane::test {

using namespace corvane::simulated;

LiveMac::LiveMac(const std::vector<std::string> &arguments)
{
    Machine machine = baseM1();
    machine.processes.push_back({.pid = getpid(),
                                 .name = "tst_LiveMac",
                                 .footprint = 20 << 20,
                                 .arguments = argumentBlock(arguments.front(), arguments)});
    mac().boot(machine);
}

bool LiveMac::isVirtualMachine() const
{
    return !mac().machine.hasPowerManager;
}

std::uint64_t LiveMac::memoryBytes() const
{
    return mac().machine.memoryBytes;
}

std::size_t LiveMac::logicalCores() const
{
    return mac().machine.cpus.size();
}

void LiveMac::workForASecond() const
{
    mac().advance(1);
}

double LiveMac::seconds()
{
    return mac().clock();
}

} // namespace corvane::test
