#include "simulated_mac/SimulatedMac.h"

#include <IOKit/IOKitLib.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <string_view>

using namespace corvane::simulated;

namespace {

constexpr io_object_t powerManager = 0x1103;
constexpr io_object_t accelerator = 0x1203;
constexpr io_object_t clientIterator = 0x1303; ///< One at a time.
constexpr io_object_t firstClient = 0x1403;

std::atomic<std::size_t> nextClient = 0;

class Matching : public Dictionary {
public:
    Matching(const char *kind, const char *name) : kind(kind), name(name) { }
    const std::string kind;
    const std::string name;
};

std::vector<std::uint8_t> garbageBytes(std::size_t count)
{
    std::vector<std::uint8_t> bytes(count);
    for (std::uint8_t &byte : bytes)
        byte = static_cast<std::uint8_t>(faults().garbage());
    return bytes;
}

io_object_t handOut(io_object_t object)
{
    ++ledger().registryEntries;
    return object;
}

/// The client of the GPU behind an entry; null for another entry. The processes must be locked.
const Graphics::Client *clientOf(io_object_t entry)
{
    const auto &graphics = mac().machine.graphics;
    const std::size_t place = entry - firstClient;
    if (entry < firstClient || !graphics || place >= graphics->clients.size())
        return nullptr;
    return &graphics->clients[place];
}

/// Makes an object for the time of a call: what holds it keeps a reference of its own.
template <typename Class, typename... Arguments>
std::unique_ptr<Class, void (*)(Class *)> temporary(Arguments &&...arguments)
{
    return {new Class(std::forward<Arguments>(arguments)...),
            [](Class *object) { object->release(); }};
}

Object *dictionaryOf(const char *key, std::int64_t value)
{
    const auto number = temporary<Number>(value);
    return new Dictionary({{key, number.get()}});
}

Object *usageOf(const Graphics::Client &client)
{
    std::vector<Object *> queues;
    for (const std::int64_t time : client.times)
        queues.push_back(dictionaryOf("accumulatedGPUTime", time));
    auto *list = new Array(queues);
    std::ranges::for_each(queues, &Object::release);
    return list;
}

/// Null for a property that the entry does not have.
Object *propertyOf(io_object_t entry, const std::string &name)
{
    const corvane::MutexLock lock(mac().processesMutex);
    const Machine &machine = mac().machine;
    if (entry == powerManager) {
        const auto table = machine.tables.find(name);
        return table == machine.tables.end() ? nullptr : new Data(table->second);
    }
    if (entry == accelerator) {
        const bool isTold = name == "PerformanceStatistics" && machine.graphics->memoryUsed;
        return isTold ? dictionaryOf("In use system memory", *machine.graphics->memoryUsed)
                      : nullptr;
    }
    const Graphics::Client *client = clientOf(entry);
    if (!client)
        throw Misuse("not a registry entry");
    if (name == "IOUserClientCreator" && client->creator)
        return new String(*client->creator);
    return name == "AppUsage" ? usageOf(*client) : nullptr;
}

/// The first bytes of a property; as it is where it has none.
Object *shortened(Object *property)
{
    const auto *data = dynamic_cast<Data *>(property);
    if (!data)
        return property;
    std::vector<std::uint8_t> bytes = data->bytes;
    bytes.resize(std::min<std::size_t>(bytes.size(), 20));
    property->release();
    return new Data(std::move(bytes));
}

bool isThere(const Matching &wanted)
{
    const corvane::MutexLock lock(mac().processesMutex);
    if (wanted.kind == "name")
        return wanted.name == "pmgr" && mac().machine.hasPowerManager;
    return wanted.name == "IOAccelerator" && mac().machine.graphics;
}

} // namespace

const mach_port_t kIOMainPortDefault = 0;

CFMutableDictionaryRef IOServiceMatching(const char *className)
{
    if (faults().ask(Call::IOServiceMatching))
        return nullptr;
    return referenceTo<CFMutableDictionaryRef>(new Matching("class", className));
}

CFMutableDictionaryRef IOServiceNameMatching(const char *name)
{
    if (faults().ask(Call::IOServiceNameMatching))
        return nullptr;
    return referenceTo<CFMutableDictionaryRef>(new Matching("name", name));
}

io_service_t IOServiceGetMatchingService(mach_port_t, CFDictionaryRef matching)
{
    auto &wanted = objectAs<Matching>(matching);
    const io_object_t entry = wanted.kind == "name" ? powerManager : accelerator;
    const bool found = isThere(wanted);
    wanted.release(); // Consumed, found or not.
    if (faults().ask(Call::IOServiceGetMatchingService) || !found)
        return 0;
    return handOut(entry);
}

CFTypeRef IORegistryEntryCreateCFProperty(io_registry_entry_t entry, CFStringRef key,
                                          CFAllocatorRef, IOOptionBits)
{
    const std::string &name = objectAs<String>(key).text;
    const auto fault = faults().ask(Call::IORegistryEntryCreateCFProperty);
    if (fault == Way::wrongType)
        return referenceTo<CFTypeRef>(new String("a text where bytes are wanted"));
    if (fault == Way::empty)
        return referenceTo<CFTypeRef>(new Data({}));
    if (fault == Way::garbage)
        return referenceTo<CFTypeRef>(new Data(garbageBytes(faults().garbage() % 300)));
    Object *property = fault == Way::null ? nullptr : propertyOf(entry, name);
    if (!property)
        return nullptr;
    return referenceTo<CFTypeRef>(fault == Way::shortAnswer ? shortened(property) : property);
}

kern_return_t IORegistryEntryGetChildIterator(io_registry_entry_t entry, const io_name_t plane,
                                              io_iterator_t *iterator)
{
    if (entry != accelerator || std::string_view(plane) != "IOService")
        throw Misuse("not an entry with clients");
    if (faults().ask(Call::IORegistryEntryGetChildIterator))
        return KERN_FAILURE;
    nextClient = 0;
    *iterator = handOut(clientIterator);
    return KERN_SUCCESS;
}

io_object_t IOIteratorNext(io_iterator_t iterator)
{
    if (iterator != clientIterator)
        throw Misuse("not an iterator");
    if (faults().ask(Call::IOIteratorNext))
        return 0;
    const corvane::MutexLock lock(mac().processesMutex);
    const io_object_t entry = firstClient + static_cast<io_object_t>(nextClient++);
    return clientOf(entry) ? handOut(entry) : 0;
}

boolean_t IOObjectConformsTo(io_object_t object, const io_name_t className)
{
    const corvane::MutexLock lock(mac().processesMutex);
    const Graphics::Client *client = clientOf(object);
    return client && client->className == className;
}

kern_return_t IOObjectRelease(io_object_t object)
{
    if (object == 0)
        throw Misuse("not an object of IOKit");
    if (ledger().registryEntries.fetch_sub(1) < 1)
        throw Misuse("a registry entry was released once too often");
    return KERN_SUCCESS;
}
