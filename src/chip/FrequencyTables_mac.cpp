#include "chip/FrequencyTables_mac.h"

#include "platform/RegistryEntry_mac.h"

namespace corvane {

namespace {

/// The bytes of a property of the power manager; empty when there are none.
std::vector<std::byte> readPmgrBytes(const std::string &key)
{
    const CFOwned<CFTypeRef> property = RegistryEntry::named("pmgr").property(key);
    if (!property || CFGetTypeID(property.get()) != CFDataGetTypeID())
        return {};
    const auto data = static_cast<CFDataRef>(property.get());
    const auto *bytes = reinterpret_cast<const std::byte *>(CFDataGetBytePtr(data));
    return bytes ? std::vector(bytes, bytes + CFDataGetLength(data)) : std::vector<std::byte>{};
}

/// Chips without a table of efficiency cores name the tables of their clusters.
std::vector<double> readSlowerClusterTable(const std::vector<double> &faster)
{
    std::vector<std::vector<double>> tables;
    for (const std::uint32_t number :
         IORegistryReader::parseClusterTables(readPmgrBytes("acc-clusters")))
        tables.push_back(IORegistryReader::readPmgrFrequencies("voltage-states"
                                                               + std::to_string(number) + "-sram"));
    return IORegistryReader::slowerTable(tables, faster);
}

} // namespace

std::vector<double> IORegistryReader::readPmgrFrequencies(const std::string &key)
{
    return parseScaledFrequencies(readPmgrBytes(key));
}

FrequencyTables readFrequencyTables()
{
    FrequencyTables tables{
        .efficiency = IORegistryReader::readPmgrFrequencies("voltage-states1-sram"),
        .performance = IORegistryReader::readPmgrFrequencies("voltage-states5-sram")};
    if (tables.efficiency.empty())
        tables.efficiency = readSlowerClusterTable(tables.performance);
    return tables;
}

} // namespace corvane
