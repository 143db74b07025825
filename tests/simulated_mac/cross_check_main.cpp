// Refers to everything that the Apple sources without Qt offer, so that the linker must find all
// that they call.

#include "platform/BootClock.h"
#include "platform/HostSystem.h"
#include "platform/ThreadPriority.h"
#include "processes/ProcessBridge.h"
#include "sampling/CoreTicks.h"
#include "sampling/MemoryCounters.h"
#include "telemetry/ChipName.h"
#include "telemetry/FrequencyTables.h"
#include "telemetry/IOReportBridge.h"
#include "telemetry/ThermalBridge.h"

using namespace corvane;

int main()
{
    lowerThreadPriority();
    const bool known = hostSystem() == HostSystem::mac && secondsSinceBoot() > 0
        && MemoryCountersReader().read().pages && CoreTicksReader().read() && readChipName()
        && !frequencyTables().performance.empty() && !ThermalBridge().readAllTemperatures().empty()
        && !ProcessBridge::allProcesses().empty() && ProcessBridge::processArgsForPID(1);
    const auto bridge = IOReportBridge::withChannelGroups({{.group = "Energy Model"}});
    if (!known || !bridge)
        return 1;
    const auto sample = bridge->takeSample();
    bridge->iterate(bridge->delta(sample.get(), sample.get()).get(),
                    [](const ReportingChannel &) {});
    return 0;
}
