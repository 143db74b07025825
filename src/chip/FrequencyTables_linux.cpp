#include "chip/FrequencyTables.h"

#include "cpu/CPUFrequencies.h"

namespace corvane {

FrequencyTables readFrequencyTables(const std::string &root)
{
    FrequencyTables tables;
    for (const CPUClusterStates &states : readCPUClusterStates(root)) {
        std::vector<double> &table =
            states.cluster.channel == "ECPU" ? tables.efficiency : tables.performance;
        for (const std::uint64_t kHz : states.kHz)
            table.push_back(static_cast<double>(kHz) / 1000);
    }
    return tables;
}

std::vector<double> IORegistryReader::readPmgrFrequencies(const std::string &)
{
    return {};
}

} // namespace corvane
