#pragma once

#include "records/ChipReading.h"

#include <array>
#include <optional>

namespace corvane {

/// The parts of a chip that have temperatures of their own.
enum class ChipPart { cpu, gpu, ane, package };

/// The temperature of one sensor.
struct PartTemperature {
    ChipPart part = ChipPart::cpu;
    double celsius = 0;
};

/// The temperature of each part in degrees Celsius; absent when no sensor of that part had a value.
struct ChipTemperatures {
    std::optional<double> cpu = {};
    std::optional<double> gpu = {};
    std::optional<double> ane = {};
    std::optional<double> package = {};
};

/// Sums up sensors and gives the mean of each part.
class TemperatureMeans {
public:
    void add(PartTemperature sensor);
    ChipTemperatures means() const;

private:
    struct Sum {
        double celsius = 0;
        int count = 0;
    };
    std::optional<double> mean(ChipPart part) const;

    std::array<Sum, 4> m_sums = {}; ///< By part.
};

void setTemperatures(ChipReading &reading, const ChipTemperatures &temperatures);

} // namespace corvane
