#include "gpu/NvidiaLibrary_linux.h"

#include <cstdint>
#include <cstring>
#include <string_view>

#include <dlfcn.h>

using namespace corvane;

namespace {

using SetAnswers = void (*)(const std::uint8_t *, std::size_t);

/// The stand-in keeps the bytes for as long as it is loaded, thus for good.
SetAnswers setAnswers()
{
    static const auto found = reinterpret_cast<SetAnswers>(
        dlsym(dlopen(FUZZED_NVIDIA, RTLD_NOW | RTLD_LOCAL), "setAnswers"));
    if (!found)
        __builtin_trap();
    return found;
}

void check(const NvidiaDeviceReading &device)
{
    constexpr std::uint64_t most = std::uint64_t(1) << 50;
    if (device.busyFraction && !(*device.busyFraction >= 0 && *device.busyFraction <= 1))
        __builtin_trap();
    if (device.watts && *device.watts < 0)
        __builtin_trap();
    if (device.memoryUsed && *device.memoryUsed > device.memoryTotal.value_or(most))
        __builtin_trap();
    if (device.name.size() > 96 || device.name.find('\0') != std::string::npos)
        __builtin_trap();
    if (device.processes && device.processes->size() > 10'000)
        __builtin_trap();
    for (const GPUProcessUse &process : device.processes.value_or(std::vector<GPUProcessUse>())) {
        if (process.pid <= 0 || process.bytes.value_or(0) > most)
            __builtin_trap();
        if (!(process.busyFraction.value_or(0) <= 1))
            __builtin_trap();
    }
    if (device.address.size() > 32 || device.address.find('\0') != std::string::npos)
        __builtin_trap();
}

} // namespace

/// Any bytes as what NVIDIA's library answers, call by call.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    setAnswers()(data, size);
    NvidiaLibrary library(FUZZED_NVIDIA);
    for (int reading = 0; reading < 2; ++reading) {
        const auto devices = library.read(1000 + reading, true);
        if (devices && devices->size() > 64)
            __builtin_trap();
        if (devices) {
            for (const NvidiaDeviceReading &device : *devices)
                check(device);
        }
    }
    return 0;
}
