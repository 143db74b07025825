#pragma once

#include "gpuclients/GPUUse.h"
#include "records/GPUHolders.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace corvane {

/// What processes hold and use of the GPUs, all GPUs together. What is not known is absent.
struct GPUShare {
    std::optional<std::uint64_t> bytes = {};
    std::optional<double> fraction = {}; ///< Mean over the GPUs that they use, 0…1.

    friend bool operator==(const GPUShare &, const GPUShare &) = default;
};

/// The uses of all GPUs by process. Keeps no link to the list that it was made from.
class GPUShares {
public:
    explicit GPUShares(const std::vector<GPUUse> &uses);

    /// What these processes have together.
    GPUShare of(const std::vector<std::int32_t> &pids) const;

    /// The processes that hold at least so many bytes of all GPUs, by their numbers.
    std::vector<std::int32_t> holding(std::uint64_t bytes) const;

private:
    std::map<std::int32_t, std::vector<GPUUse>> m_byPid = {};
};

/// The name of a process; empty when it has ended.
using ProcessName = std::function<QString(std::int32_t pid)>;

/// Who holds the memory of each GPU of which a process is known to hold some. `ai` are the AI
/// workloads' processes.
std::vector<GPUHolders> gpuHolders(const std::vector<GPUUse> &uses,
                                   const std::unordered_set<std::int32_t> &ai,
                                   const ProcessName &name);

} // namespace corvane
