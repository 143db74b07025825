#pragma once

#include "threads/OneThread.h"

#include <map>
#include <memory>
#include <string>

namespace corvane {

/// Reads every temperature sensor of a Mac, by name, and lists the sensors anew at the first and
/// every 60th read: the system starts some late. Owned by the thermal sampler; used on one thread,
/// which a sensor hub can stall. A system without sensors reads as an empty map.
class ThermalBridge {
public:
    ThermalBridge();
    ~ThermalBridge();

    /// Degrees Celsius by sensor name, each a temperature that `isTemperature` accepts. Of sensors
    /// with the same name the last one counts; sensors without a name are left out.
    std::map<std::string, double> readAllTemperatures();

private:
    struct Sensors;
    std::unique_ptr<Sensors> m_sensors;
    OneThread m_thread = {};
};

} // namespace corvane
