#include "thermal/ThermalBridge_mac.h"

#include "platform/CFOwned_mac.h"
#include "platform/CFText_mac.h"
#include "platform/Plausible.h"

#include <IOKit/hidsystem/IOHIDEventSystemClient.h>
#include <IOKit/hidsystem/IOHIDServiceClient.h>

#include <array>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

// Exported by IOKit without a public declaration.
extern "C" {
IOHIDEventSystemClientRef IOHIDEventSystemClientCreate(CFAllocatorRef allocator);
int IOHIDEventSystemClientSetMatching(IOHIDEventSystemClientRef client, CFDictionaryRef matching);
CFTypeRef IOHIDServiceClientCopyEvent(IOHIDServiceClientRef service, std::int64_t type,
                                      std::int32_t options, std::int64_t timestamp);
double IOHIDEventGetFloatValue(CFTypeRef event, std::int32_t field);
}

namespace corvane {

namespace {

CFOwned<CFNumberRef> makeNumber(std::int32_t value)
{
    return CFOwned<CFNumberRef>(CFNumberCreate(kCFAllocatorDefault, kCFNumberSInt32Type, &value));
}

/// Matches the temperature sensors among the services of the event system.
CFOwned<CFDictionaryRef> temperatureSensorMatching()
{
    constexpr std::int32_t vendorPage = 0xff00;
    constexpr std::int32_t temperatureUsage = 5;
    const auto page = makeNumber(vendorPage);
    const auto usage = makeNumber(temperatureUsage);
    if (!page || !usage)
        return nullptr;
    std::array<const void *, 2> keys{CFSTR("PrimaryUsagePage"), CFSTR("PrimaryUsage")};
    std::array<const void *, 2> values{page.get(), usage.get()};
    return CFOwned<CFDictionaryRef>(
        CFDictionaryCreate(kCFAllocatorDefault, keys.data(), values.data(), keys.size(),
                           &kCFTypeDictionaryKeyCallBacks, &kCFTypeDictionaryValueCallBacks));
}

CFOwned<CFArrayRef> copyTemperatureSensors(IOHIDEventSystemClientRef client)
{
    const auto matching = temperatureSensorMatching();
    if (!client || !matching)
        return nullptr;
    IOHIDEventSystemClientSetMatching(client, matching.get());
    return CFOwned<CFArrayRef>(IOHIDEventSystemClientCopyServices(client));
}

/// The sensor's name; empty when it has none.
std::string productName(IOHIDServiceClientRef sensor)
{
    const CFOwned<CFTypeRef> name(IOHIDServiceClientCopyProperty(sensor, CFSTR("Product")));
    if (!name || CFGetTypeID(name.get()) != CFStringGetTypeID())
        return {};
    std::string storage;
    return std::string(utf8View(static_cast<CFStringRef>(name.get()), storage).value_or(""));
}

/// Absent when the sensor does not answer, or with an implausible value.
std::optional<double> temperature(IOHIDServiceClientRef sensor)
{
    constexpr std::int64_t temperatureEvent = 15;
    constexpr std::int32_t levelField = temperatureEvent << 16;
    const CFOwned<CFTypeRef> event(IOHIDServiceClientCopyEvent(sensor, temperatureEvent, 0, 0));
    if (!event)
        return std::nullopt;
    const double celsius = IOHIDEventGetFloatValue(event.get(), levelField);
    return isTemperature(celsius, celsiusLimitMac) ? std::optional(celsius) : std::nullopt;
}

} // namespace

struct ThermalBridge::Sensors {
    CFOwned<IOHIDEventSystemClientRef> client;
    CFOwned<CFArrayRef> services; ///< Keeps the sensors alive.
    std::vector<std::string> names;
    int readsUntilListing = 0;

    /// Keeps the sensors that it has when the system lists none.
    void list()
    {
        if (!client)
            client.reset(IOHIDEventSystemClientCreate(kCFAllocatorDefault));
        auto listed = copyTemperatureSensors(client.get());
        if (!listed)
            return;
        services = std::move(listed);
        names.clear();
        for (CFIndex index = 0; index < count(); ++index)
            names.push_back(productName(at(index)));
    }

    CFIndex count() const { return services ? CFArrayGetCount(services.get()) : 0; }

    IOHIDServiceClientRef at(CFIndex index) const
    {
        return static_cast<IOHIDServiceClientRef>(
            const_cast<void *>(CFArrayGetValueAtIndex(services.get(), index)));
    }
};

ThermalBridge::ThermalBridge() : m_sensors(std::make_unique<Sensors>()) { }

ThermalBridge::~ThermalBridge() = default;

std::map<std::string, double> ThermalBridge::readAllTemperatures()
{
    constexpr int readsOfAListing = 60;
    m_thread.check();
    if (m_sensors->readsUntilListing == 0) {
        m_sensors->list();
        m_sensors->readsUntilListing = readsOfAListing;
    }
    --m_sensors->readsUntilListing;
    std::map<std::string, double> temperatures;
    for (std::size_t index = 0; index < m_sensors->names.size(); ++index) {
        const std::string &name = m_sensors->names[index];
        if (name.empty())
            continue;
        if (const auto celsius = temperature(m_sensors->at(static_cast<CFIndex>(index))))
            temperatures[name] = *celsius;
    }
    return temperatures;
}

} // namespace corvane
