#pragma once

#include "gpu/GPUProcessUse.h"
#include "gpu/NvidiaFunctions_linux.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace corvane {

/// Which processes use one GPU of NVIDIA, according to its management library: those of all users,
/// by their numbers on the host. Owned by the library's object, used on its thread.
class NvidiaProcesses {
public:
    /// By process number, each once. Absent when the library does not tell. `now` is in monotonic
    /// seconds: a load of which the library has nothing new is kept for some of them, then absent.
    std::optional<std::vector<GPUProcessUse>> read(NvidiaFunctions &functions, NvidiaDevice device,
                                                   double now);

private:
    struct Load {
        double fraction = 0; ///< 0…1
        double seconds = 0;  ///< When it was read.
    };

    void readLoads(NvidiaFunctions &functions, NvidiaDevice device, double now);
    void addLoad(std::uint32_t pid, std::uint32_t percent, std::uint64_t microseconds, double now);

    std::map<std::uint32_t, Load> m_loads = {};
    std::optional<double> m_tellsSince = {}; ///< Absent while loads of processes are not told.
    std::uint64_t m_lastSample = 0;          ///< In microseconds, by the library's clock.
};

} // namespace corvane
