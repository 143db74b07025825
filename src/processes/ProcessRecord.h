#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace corvane {

/// What the system knows of one process. The bridge always fills in number and memory; readers skip
/// a record that lacks a value which they need.
struct ProcessRecord {
    std::optional<std::int32_t> pid = {};
    std::optional<std::string> name = {};     ///< UTF-8; absent when it was not asked for.
    std::optional<std::uint64_t> memory = {}; ///< Physical footprint in bytes.

    friend bool operator==(const ProcessRecord &, const ProcessRecord &) = default;
};

} // namespace corvane
