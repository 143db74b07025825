#include "gpuclients/KfdFiles_linux.h"

#include "gpuclients/KfdText.h"
#include "platform/KernelFile_linux.h"
#include "platform/KernelFolder_linux.h"
#include "platform/KernelText.h"

#include <climits>

namespace corvane {

KfdFiles::KfdFiles(std::string root) : m_folder(std::move(root) + "/sys/class/kfd/kfd/") { }

void KfdFiles::readTopology()
{
    m_addresses.clear();
    const std::string nodes = m_folder + "topology/nodes/";
    for (const std::string &name : namesInFolder(nodes)) {
        const std::string number = readTrimmedFile(nodes + name + "/gpu_id");
        const auto properties = readKernelFile(nodes + name + "/properties");
        const auto address = kfdAddress(properties.value_or(std::string()));
        if (parseUnsigned(number).value_or(0) > 0 && address)
            m_addresses[number] = *address;
    }
}

std::vector<KfdUse> KfdFiles::read(const std::set<std::string> &addresses, double now)
{
    constexpr double secondsKept = 60;
    constexpr std::size_t mostProcesses = 1024;
    if (now >= m_nextTopology) {
        m_nextTopology = now + secondsKept;
        readTopology();
    }
    std::vector<KfdUse> uses;
    if (m_addresses.empty())
        return uses;
    std::vector<std::string> processes = namesInFolder(m_folder + "proc");
    processes.resize(std::min(processes.size(), mostProcesses));
    for (const std::string &process : processes) {
        const auto pid = parseUnsigned(process);
        if (!pid || *pid == 0 || *pid > INT_MAX)
            continue;
        for (const auto &[number, address] : m_addresses) {
            if (!addresses.contains(address))
                continue;
            const auto bytes =
                parseUnsigned(readTrimmedFile(m_folder + "proc/" + process + "/vram_" + number));
            if (bytes && byteCount(*bytes, 1))
                uses.push_back({address, static_cast<std::int32_t>(*pid), *bytes});
        }
    }
    return uses;
}

} // namespace corvane
