#pragma once

#include "threads/OneThread.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// What NVIDIA's management library reports about one GPU. What it does not support is absent.
struct NvidiaDeviceReading {
    std::string address = {};
    std::optional<double> busyFraction = {}; ///< 0…1
    std::optional<int> performanceState = {};
    std::optional<double> temperature = {}; ///< Degrees Celsius.
    std::optional<double> watts = {};
    std::optional<std::uint64_t> millijoules = {}; ///< Grows from the start of the driver.
};

/// NVIDIA's management library, opened at run time. Any of its calls may take seconds, and while it
/// is open no GPU of NVIDIA falls asleep. Used on one thread, which is not the main one.
class NvidiaLibrary {
public:
    /// Null when the library is missing, lacks a necessary function, or finds no driver.
    static std::unique_ptr<NvidiaLibrary> open(const std::string &path);
    ~NvidiaLibrary();

    /// Every GPU; absent when the library has to be closed because it lost its driver or a GPU.
    std::optional<std::vector<NvidiaDeviceReading>> read();

private:
    struct Functions;
    explicit NvidiaLibrary(std::unique_ptr<Functions> functions);
    std::unique_ptr<Functions> m_functions;
    OneThread m_thread = {};
};

} // namespace corvane
