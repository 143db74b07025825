#include "simulated_mac/SimulatedMac.h"

#include <IOKit/IOKitLib.h>

#include <memory>

using namespace corvane::simulated;

namespace {

constexpr io_object_t powerManager = 0x1103;

class NameMatching : public Dictionary {
public:
    explicit NameMatching(std::string name) : name(std::move(name)) { }
    const std::string name;
};

std::vector<std::uint8_t> garbageBytes(std::size_t count)
{
    std::vector<std::uint8_t> bytes(count);
    for (std::uint8_t &byte : bytes)
        byte = static_cast<std::uint8_t>(faults().garbage());
    return bytes;
}

} // namespace

const mach_port_t kIOMainPortDefault = 0;

CFMutableDictionaryRef IOServiceNameMatching(const char *name)
{
    if (faults().ask(Call::IOServiceNameMatching))
        return nullptr;
    return referenceTo<CFMutableDictionaryRef>(new NameMatching(name));
}

io_service_t IOServiceGetMatchingService(mach_port_t, CFDictionaryRef matching)
{
    auto &wanted = objectAs<NameMatching>(matching);
    const bool found = wanted.name == "pmgr" && mac().machine.hasPowerManager;
    wanted.release(); // Consumed, found or not.
    if (faults().ask(Call::IOServiceGetMatchingService) || !found)
        return 0;
    ++ledger().registryEntries;
    return powerManager;
}

CFTypeRef IORegistryEntryCreateCFProperty(io_registry_entry_t entry, CFStringRef key,
                                          CFAllocatorRef, IOOptionBits)
{
    const std::string &name = objectAs<String>(key).text;
    if (entry != powerManager)
        throw Misuse("not a registry entry");
    const auto fault = faults().ask(Call::IORegistryEntryCreateCFProperty);
    if (fault == Way::wrongType)
        return referenceTo<CFTypeRef>(new String("a text where bytes are wanted"));
    if (fault == Way::empty)
        return referenceTo<CFTypeRef>(new Data({}));
    if (fault == Way::garbage)
        return referenceTo<CFTypeRef>(new Data(garbageBytes(faults().garbage() % 300)));
    const auto table = mac().machine.tables.find(name);
    if (fault == Way::null || table == mac().machine.tables.end())
        return nullptr;
    std::vector<std::uint8_t> bytes = table->second;
    if (fault == Way::shortAnswer)
        bytes.resize(std::min<std::size_t>(bytes.size(), 20));
    return referenceTo<CFTypeRef>(new Data(std::move(bytes)));
}

kern_return_t IOObjectRelease(io_object_t object)
{
    if (object != powerManager)
        throw Misuse("not an object of IOKit");
    if (ledger().registryEntries.fetch_sub(1) < 1)
        throw Misuse("a registry entry was released once too often");
    return KERN_SUCCESS;
}
