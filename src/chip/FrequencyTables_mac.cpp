#include "chip/FrequencyTables_mac.h"

#include "platform/CFOwned_mac.h"

#include <IOKit/IOKitLib.h>

namespace corvane {

namespace {

/// An entry of the device registry; releases it when it goes.
class RegistryEntry {
public:
    explicit RegistryEntry(const char *name) : m_entry(find(name)) { }
    ~RegistryEntry()
    {
        if (m_entry)
            IOObjectRelease(m_entry);
    }
    RegistryEntry(const RegistryEntry &) = delete;
    RegistryEntry &operator=(const RegistryEntry &) = delete;

    /// The property of this name; null when there is none, or no such entry.
    CFOwned<CFTypeRef> property(const std::string &name) const
    {
        const CFOwned<CFStringRef> key(
            CFStringCreateWithCString(kCFAllocatorDefault, name.c_str(), kCFStringEncodingUTF8));
        if (!m_entry || !key)
            return nullptr;
        return CFOwned<CFTypeRef>(
            IORegistryEntryCreateCFProperty(m_entry, key.get(), kCFAllocatorDefault, 0));
    }

private:
    static io_service_t find(const char *name)
    {
        // The dictionary is not owned here: looking for the service consumes it.
        const CFMutableDictionaryRef matching = IOServiceNameMatching(name);
        return matching ? IOServiceGetMatchingService(kIOMainPortDefault, matching) : 0;
    }

    io_service_t m_entry;
};

/// The bytes of a property of the power manager; empty when there are none.
std::vector<std::byte> readPmgrBytes(const std::string &key)
{
    const CFOwned<CFTypeRef> property = RegistryEntry("pmgr").property(key);
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
