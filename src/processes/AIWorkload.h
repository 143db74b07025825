#pragma once

#include "arguments/ModelDetails.h"
#include "processes/AIFramework.h"
#include "processes/WorkloadPart.h"

#include <QHashFunctions>

#include <cstdint>
#include <vector>

namespace corvane {

/// Local AI inference: one process that was recognised, or several that belong to one server.
struct AIWorkload {
    std::int64_t id = 0;  ///< Process id; identity in lists.
    std::int64_t pid = 0; ///< The same value.
    QString processName = {};
    AIFramework framework = AIFramework::generic;
    std::optional<QString> model = {}; ///< Absent when the command line names none.
    std::uint64_t memory = 0;          ///< Physical footprint in bytes.
    /// Bytes of all GPUs; absent where the system does not tell a process's share (always on a Mac,
    /// where it is part of the footprint).
    std::optional<std::uint64_t> gpuMemory = {};
    std::optional<double> gpuFraction = {}; ///< Its share of the GPUs' time, 0…1.
    std::vector<WorkloadPart> parts = {};   ///< All its processes; empty where it is one alone.
    std::uint64_t startTime = 0; ///< As in `ProcessIdentity`; tells users of one number apart.
    ModelDetails details = {};

    friend bool operator==(const AIWorkload &, const AIWorkload &) = default;
};

inline std::size_t qHash(const AIWorkload &workload, std::size_t seed = 0)
{
    return qHashMulti(seed, workload.id, workload.pid, workload.processName,
                      static_cast<int>(workload.framework), workload.model.value_or(QString()),
                      workload.model.has_value(), workload.memory, workload.gpuMemory.value_or(0),
                      workload.gpuFraction.value_or(-1),
                      qHashRange(workload.parts.begin(), workload.parts.end()));
}

} // namespace corvane
