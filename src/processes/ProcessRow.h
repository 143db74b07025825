#pragma once

#include <QHashFunctions>
#include <QString>

#include <cstdint>
#include <optional>

namespace corvane {

/// One process of the ranking by memory.
struct ProcessRow {
    std::int64_t id = 0; ///< Process id; the row's identity in lists.
    QString name = {};
    std::uint64_t memory = 0; ///< Physical footprint in bytes.
    std::optional<std::uint64_t> gpuMemory =
        {}; ///< Bytes of all GPUs; absent where it is not known.

    friend bool operator==(const ProcessRow &, const ProcessRow &) = default;
};

inline std::size_t qHash(const ProcessRow &row, std::size_t seed = 0)
{
    return qHashMulti(seed, row.id, row.name, row.memory, row.gpuMemory.value_or(0));
}

} // namespace corvane
