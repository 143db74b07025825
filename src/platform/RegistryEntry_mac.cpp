#include "platform/RegistryEntry_mac.h"

namespace corvane {

namespace {

/// The dictionary is not owned by the caller: looking for a service consumes it.
io_service_t serviceOf(CFMutableDictionaryRef matching)
{
    return matching ? IOServiceGetMatchingService(kIOMainPortDefault, matching) : 0;
}

} // namespace

RegistryEntry RegistryEntry::named(const char *name)
{
    return RegistryEntry(serviceOf(IOServiceNameMatching(name)));
}

RegistryEntry RegistryEntry::ofClass(const char *name)
{
    return RegistryEntry(serviceOf(IOServiceMatching(name)));
}

RegistryEntry::~RegistryEntry()
{
    if (m_entry)
        IOObjectRelease(m_entry);
}

CFOwned<CFTypeRef> RegistryEntry::property(const std::string &name) const
{
    const CFOwned<CFStringRef> key(
        CFStringCreateWithCString(kCFAllocatorDefault, name.c_str(), kCFStringEncodingUTF8));
    if (!m_entry || !key)
        return nullptr;
    return CFOwned<CFTypeRef>(
        IORegistryEntryCreateCFProperty(m_entry, key.get(), kCFAllocatorDefault, 0));
}

std::vector<RegistryEntry> RegistryEntry::children(std::size_t most) const
{
    std::vector<RegistryEntry> entries;
    io_iterator_t iterator = 0;
    if (!m_entry
        || IORegistryEntryGetChildIterator(m_entry, "IOService", &iterator) != KERN_SUCCESS)
        return entries;
    while (entries.size() < most) {
        const io_registry_entry_t entry = IOIteratorNext(iterator);
        if (!entry)
            break;
        entries.push_back(RegistryEntry(entry));
    }
    IOObjectRelease(iterator);
    return entries;
}

bool RegistryEntry::isOfClass(const char *name) const
{
    return m_entry && IOObjectConformsTo(m_entry, name);
}

std::optional<std::uint64_t> numberIn(CFTypeRef dictionary, CFStringRef key)
{
    if (!dictionary || CFGetTypeID(dictionary) != CFDictionaryGetTypeID())
        return std::nullopt;
    const CFTypeRef value = CFDictionaryGetValue(static_cast<CFDictionaryRef>(dictionary), key);
    std::int64_t number = 0;
    if (!value || CFGetTypeID(value) != CFNumberGetTypeID()
        || !CFNumberGetValue(static_cast<CFNumberRef>(value), kCFNumberSInt64Type, &number)
        || number < 0)
        return std::nullopt;
    return static_cast<std::uint64_t>(number);
}

} // namespace corvane
