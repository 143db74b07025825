#include "cpu/CPUFrequencyFiles_linux.h"

#include <algorithm>
#include <filesystem>

namespace corvane {

namespace {

std::optional<KernelFile> fileIn(const std::string &folder, const char *name)
{
    std::error_code error;
    const std::string path = folder + name;
    if (!std::filesystem::exists(path, error))
        return std::nullopt;
    return KernelFile(path);
}

std::optional<std::uint64_t> readKHz(const std::string &path)
{
    KernelFile file(path);
    const auto text = file.read();
    return text ? parseKHz(*text) : std::nullopt;
}

std::optional<std::uint64_t> presentKHz(const std::string &folder)
{
    // Newer kernels average over some ms. The average fails for a CPU that has just been idle.
    const auto average = readKHz(folder + "/cpuinfo_avg_freq");
    return average ? average : readKHz(folder + "/scaling_cur_freq");
}

} // namespace

CPUFrequencyFiles::CPUFrequencyFiles(const CPUCluster &cluster)
{
    for (const CPUPolicy &policy : cluster.policies) {
        m_policies.push_back({.cpus = policy.cpus,
                              .timeInState = fileIn(policy.folder, "/stats/time_in_state"),
                              .folder = policy.folder});
    }
}

CPUClusterReading CPUFrequencyFiles::read(std::optional<int> busiest)
{
    m_thread.check();
    CPUClusterReading reading;
    reading.policyTimes.reserve(m_policies.size());
    for (Policy &policy : m_policies) {
        auto &times = reading.policyTimes.emplace_back();
        if (const auto text = policy.timeInState ? policy.timeInState->read() : std::nullopt)
            times = parseTimeInState(*text);
        const bool stands =
            busiest && std::ranges::find(policy.cpus, *busiest) != policy.cpus.end();
        if (stands && times.empty())
            reading.presentKHz = presentKHz(policy.folder);
    }
    return reading;
}

} // namespace corvane
