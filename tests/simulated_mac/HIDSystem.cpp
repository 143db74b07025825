#include "simulated_mac/SensorHub.h"
#include "simulated_mac/SimulatedMac.h"

#include <IOKit/hidsystem/IOHIDEventSystemClient.h>
#include <IOKit/hidsystem/IOHIDServiceClient.h>

#include <array>
#include <cmath>
#include <limits>

using namespace corvane::simulated;

// Exported by IOKit without a public declaration.
extern "C" {
IOHIDEventSystemClientRef IOHIDEventSystemClientCreate(CFAllocatorRef allocator);
int IOHIDEventSystemClientSetMatching(IOHIDEventSystemClientRef client, CFDictionaryRef matching);
CFTypeRef IOHIDServiceClientCopyEvent(IOHIDServiceClientRef service, std::int64_t type,
                                      std::int32_t options, std::int64_t timestamp);
double IOHIDEventGetFloatValue(CFTypeRef event, std::int32_t field);
}

namespace {

constexpr std::int64_t temperatureType = 15;
constexpr std::int32_t temperatureField = 15 << 16;
constexpr std::int64_t sensorPage = 0xff00;
constexpr std::int64_t sensorUsage = 5;

class Client : public Object {
public:
    Client() : Object(hidClientType) { }
    ~Client() override
    {
        if (matching)
            matching->release();
    }
    Dictionary *matching = nullptr;
};

/// A sensor, by its place in the machine's list.
class Service : public Object {
public:
    explicit Service(std::size_t sensor) : Object(hidServiceType), sensor(sensor) { }
    const std::size_t sensor;
};

class Event : public Object {
public:
    explicit Event(double celsius) : Object(hidEventType), celsius(celsius) { }
    const double celsius;
};

/// Null for a sensor that was removed since it was listed.
const Sensor *sensorOf(IOHIDServiceClientRef service)
{
    const std::vector<Sensor> &sensors = mac().machine.sensors;
    const std::size_t place = objectAs<Service>(service).sensor;
    return place < sensors.size() ? &sensors[place] : nullptr;
}

bool asksForTemperatureSensors(const Dictionary &matching)
{
    const auto number = [&matching](const char *key) {
        const auto value = matching.values.find(key);
        return value == matching.values.end() ? 0 : objectAs<Number>(value->second).value;
    };
    return number("PrimaryUsagePage") == sensorPage && number("PrimaryUsage") == sensorUsage;
}

} // namespace

SensorHub &corvane::simulated::sensorHub()
{
    static SensorHub hub;
    return hub;
}

IOHIDEventSystemClientRef IOHIDEventSystemClientCreate(CFAllocatorRef)
{
    if (faults().ask(Call::IOHIDEventSystemClientCreate))
        return nullptr;
    return referenceTo<IOHIDEventSystemClientRef>(new Client);
}

int IOHIDEventSystemClientSetMatching(IOHIDEventSystemClientRef client, CFDictionaryRef matching)
{
    auto &wanted = objectAs<Dictionary>(matching);
    auto &owner = objectAs<Client>(client);
    if (faults().ask(Call::IOHIDEventSystemClientSetMatching))
        return 1;
    wanted.retain();
    if (owner.matching)
        owner.matching->release();
    owner.matching = &wanted;
    return 0;
}

CFArrayRef IOHIDEventSystemClientCopyServices(IOHIDEventSystemClientRef client)
{
    const auto &owner = objectAs<Client>(client);
    const auto fault = faults().ask(Call::IOHIDEventSystemClientCopyServices);
    if (fault == Way::null)
        return nullptr;
    // A client that matches nothing in particular also sees keyboards and the like, which have
    // neither the name nor the event of a sensor; one that asks for something else sees nothing.
    const bool sensors = !owner.matching || asksForTemperatureSensors(*owner.matching);
    std::vector<Object *> services;
    for (std::size_t sensor = 0; sensors && !fault && sensor < mac().machine.sensors.size();
         ++sensor)
        services.push_back(new Service(sensor));
    auto *array = new Array(services);
    for (Object *service : services)
        service->release(); // The array's alone from here on.
    return referenceTo<CFArrayRef>(array);
}

CFTypeRef IOHIDServiceClientCopyProperty(IOHIDServiceClientRef service, CFStringRef key)
{
    const Sensor *sensor = sensorOf(service);
    if (!sensor || objectAs<String>(key).text != "Product")
        return nullptr;
    switch (faults().ask(Call::IOHIDServiceClientCopyProperty).value_or(Way::error)) {
    case Way::null:
        return nullptr;
    case Way::wrongType:
        return referenceTo<CFTypeRef>(new Number(42));
    case Way::empty:
        return referenceTo<CFTypeRef>(new String(""));
    case Way::garbage:
        return referenceTo<CFTypeRef>(
            new String("\xe2\x98\xa0" + std::to_string(faults().garbage())));
    default:
        break;
    }
    return sensor->product ? referenceTo<CFTypeRef>(new String(*sensor->product)) : nullptr;
}

CFTypeRef IOHIDServiceClientCopyEvent(IOHIDServiceClientRef service, std::int64_t type,
                                      std::int32_t, std::int64_t)
{
    sensorHub().wait();
    const Sensor *sensor = sensorOf(service);
    if (faults().ask(Call::IOHIDServiceClientCopyEvent) || type != temperatureType || !sensor
        || !sensor->celsius)
        return nullptr;
    return referenceTo<CFTypeRef>(new Event(*sensor->celsius));
}

double IOHIDEventGetFloatValue(CFTypeRef event, std::int32_t field)
{
    const double celsius = objectAs<Event>(event).celsius;
    if (faults().ask(Call::IOHIDEventGetFloatValue)) {
        constexpr std::array<double, 6> bogus{
            std::numeric_limits<double>::quiet_NaN(), 200.0, 0.0, -21.5,
            std::numeric_limits<double>::infinity(),  1e300};
        return bogus[faults().garbage() % bogus.size()];
    }
    return field == temperatureField ? celsius : 0;
}
