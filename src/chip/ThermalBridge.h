#pragma once

#include <map>
#include <memory>
#include <string>

namespace corvane {

/// Reads every temperature sensor that the system exposes, by name. Owned by the thermal sampler;
/// not thread-safe. A system without sensors reads as an empty map.
class ThermalBridge {
public:
    /// `root` is the folder below which kernel files are read (Linux).
    explicit ThermalBridge(const std::string &root = "/");
    ~ThermalBridge();

    /// Degrees Celsius by sensor name, each above 0, below 200 and finite. Of sensors with the same
    /// name the last one counts; sensors without a name are left out.
    std::map<std::string, double> readAllTemperatures();

private:
    struct Sensors;
    std::unique_ptr<Sensors> m_sensors;
};

} // namespace corvane
