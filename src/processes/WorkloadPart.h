#pragma once

#include <QHashFunctions>
#include <QString>

#include <cstdint>
#include <optional>

namespace corvane {

/// One process of an AI workload that has several: a server, its runners and workers.
struct WorkloadPart {
    std::int64_t pid = 0;
    QString name = {};
    std::optional<QString> model = {};           ///< Absent when the process names none.
    std::optional<std::uint64_t> memory = {};    ///< Physical footprint in bytes.
    std::optional<std::uint64_t> gpuMemory = {}; ///< Bytes of all GPUs.

    friend bool operator==(const WorkloadPart &, const WorkloadPart &) = default;
};

inline std::size_t qHash(const WorkloadPart &part, std::size_t seed = 0)
{
    return qHashMulti(seed, part.pid, part.name, part.model.value_or(QString()),
                      part.memory.value_or(0), part.gpuMemory.value_or(0));
}

} // namespace corvane
