#pragma once

#include "platform/CFOwned_mac.h"

#include <IOKit/IOKitLib.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace corvane {

/// An entry of the device registry, which it releases when it goes. An entry that is not there has
/// no properties. Any thread; Apple sources only.
class RegistryEntry {
public:
    static RegistryEntry named(const char *name);
    static RegistryEntry ofClass(const char *name); ///< The first that is of the class or derived.

    RegistryEntry(RegistryEntry &&other) noexcept : m_entry(std::exchange(other.m_entry, 0)) { }
    RegistryEntry &operator=(RegistryEntry &&other) noexcept
    {
        std::swap(m_entry, other.m_entry);
        return *this;
    }
    ~RegistryEntry();

    /// The property of this name; null when there is none.
    CFOwned<CFTypeRef> property(const std::string &name) const;

    /// The entries below it among the services, at most that many.
    std::vector<RegistryEntry> children(std::size_t most) const;

    bool isOfClass(const char *name) const;

private:
    explicit RegistryEntry(io_registry_entry_t entry) : m_entry(entry) { }

    io_registry_entry_t m_entry;
};

/// The value of that key, if `dictionary` is one and the value a whole number of at least 0.
std::optional<std::uint64_t> numberIn(CFTypeRef dictionary, CFStringRef key);

} // namespace corvane
