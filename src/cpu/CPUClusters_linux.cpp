#include "cpu/CPUClusters.h"

#include "platform/KernelFile.h"
#include "platform/KernelText.h"

namespace corvane {

std::vector<CPUCluster> readCPUClusters(const std::string &root)
{
    const std::string devices = root + "/sys/devices";
    CPUTopology topology;
    topology.present = readKernelFile(devices + "/system/cpu/present").value_or(std::string());
    topology.performanceList = readKernelFile(devices + "/cpu_core/cpus");
    topology.efficiencyList = readKernelFile(devices + "/cpu_atom/cpus");
    topology.lowPowerList = readKernelFile(devices + "/cpu_lowpower/cpus");
    forEachCPU(topology.present, [&](int cpu) {
        const auto text =
            readKernelFile(devices + "/system/cpu/cpu" + std::to_string(cpu) + "/cpu_capacity");
        if (const auto capacity = parseUnsigned(trimmed(text.value_or(std::string()))))
            topology.capacities[cpu] = *capacity;
    });
    return cpuClusters(topology);
}

} // namespace corvane
