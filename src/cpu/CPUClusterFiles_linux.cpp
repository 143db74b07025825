#include "cpu/CPUClusterFiles_linux.h"

#include "platform/KernelFile_linux.h"
#include "platform/KernelFolder_linux.h"
#include "platform/KernelText.h"
#include "platform/Plausible.h"

#include <algorithm>

namespace corvane {

namespace {

CPUTopology readTopology(const std::string &root)
{
    const std::string devices = root + "/sys/devices";
    CPUTopology topology;
    topology.present = readTrimmedFile(devices + "/system/cpu/present");
    topology.performanceList = readKernelFile(devices + "/cpu_core/cpus");
    topology.efficiencyList = readKernelFile(devices + "/cpu_atom/cpus");
    topology.lowPowerList = readKernelFile(devices + "/cpu_lowpower/cpus");
    forEachCPU(topology.present, [&](int cpu) {
        const std::string file =
            devices + "/system/cpu/cpu" + std::to_string(cpu) + "/cpu_capacity";
        if (const auto capacity = parseUnsigned(readTrimmedFile(file)))
            topology.capacities[cpu] = *capacity;
    });
    return topology;
}

/// The CPUs of a policy, offline ones included. This list has blanks where others have dashes.
std::vector<int> relatedCPUs(const std::string &folder)
{
    std::vector<int> cpus;
    const auto contents = readKernelFile(folder + "/related_cpus");
    std::string_view text = trimmed(contents ? std::string_view(*contents) : std::string_view());
    while (const auto word = takeWord(text)) {
        if (const auto cpu = parseUnsigned(*word); cpu && *cpu < maxCPUs)
            cpus.push_back(static_cast<int>(*cpu));
    }
    return cpus;
}

/// A machine without frequency scaling may have the folder, and nothing in it.
std::vector<CPUPolicy> readPolicies(const std::string &root)
{
    const std::string folder = root + "/sys/devices/system/cpu/cpufreq/";
    std::vector<CPUPolicy> policies;
    for (const std::string &name : namesInFolder(folder)) {
        CPUPolicy policy = {folder + name, relatedCPUs(folder + name)};
        if (!policy.cpus.empty())
            policies.push_back(std::move(policy));
    }
    return policies;
}

std::vector<std::uint64_t> readStates(const std::vector<CPUPolicy> &policies)
{
    std::vector<CPUFrequencyRange> ranges;
    ranges.reserve(policies.size());
    for (const CPUPolicy &policy : policies) {
        ranges.push_back(
            {.available = readKernelFile(policy.folder + "/scaling_available_frequencies"),
             .boost = readKernelFile(policy.folder + "/scaling_boost_frequencies"),
             .minimum = readKernelFile(policy.folder + "/cpuinfo_min_freq"),
             .maximum = readKernelFile(policy.folder + "/cpuinfo_max_freq")});
    }
    return cpuFrequencyStates(ranges);
}

} // namespace

std::vector<CPUCluster> readCPUClusters(const std::string &root)
{
    const std::vector<CPUPolicy> policies = readPolicies(root);
    std::vector<CPUCluster> clusters;
    for (const std::vector<int> &cpus : cpusByCluster(readTopology(root))) {
        CPUCluster &cluster = clusters.emplace_back(CPUCluster{.cpus = cpus});
        for (const CPUPolicy &policy : policies) {
            if (std::ranges::binary_search(cpus, policy.cpus.front()))
                cluster.policies.push_back(policy);
        }
        cluster.kHz = readStates(cluster.policies);
        if (!cluster.kHz.empty())
            continue;
        // Without cpufreq, as on a virtual machine, this is the only frequency, and it is constant.
        const auto cpuInfo = readKernelFile(root + "/proc/cpuinfo").value_or(std::string());
        if (const auto kHz = cpuInfoKHz(cpuInfo, cpus.front()))
            cluster.kHz.push_back(*kHz);
    }
    return clusters;
}

} // namespace corvane
