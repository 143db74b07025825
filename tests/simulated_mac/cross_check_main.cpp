// Refers to everything that the Apple sources without Qt offer, so that the linker must find all
// that they call.

#include "chip/ChipName.h"
#include "chip/FrequencyTables_mac.h"
#include "chip/IOReportBridge_mac.h"
#include "cpu/CoreTicks_mac.h"
#include "memory/MemoryCounters.h"
#include "platform/BootClock.h"
#include "platform/HostSystem.h"
#include "processes/ProcessBridge.h"
#include "thermal/ThermalBridge_mac.h"
#include "threads/ThreadPriority.h"

using namespace corvane;

int main()
{
    lowerThreadPriority();
    const bool known = hostSystem() == HostSystem::mac && secondsSinceBoot() > 0
        && readMemoryCounters().pages && readCoreTicks() && readChipName()
        && !readFrequencyTables().performance.empty()
        && !ThermalBridge().readAllTemperatures().empty() && !ProcessBridge::allProcesses().empty()
        && ProcessBridge::processArgsForPID(1);
    const auto bridge = IOReportBridge::withChannelGroups({{.group = "Energy Model"}});
    if (!known || !bridge)
        return 1;
    const auto sample = bridge->takeSample();
    bridge->iterate(bridge->delta(sample.get(), sample.get()).get(),
                    [](const ReportingChannel &) {});
    return 0;
}
