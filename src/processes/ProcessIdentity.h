#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace corvane {

/// One process for its whole life. Numbers alone are given anew.
struct ProcessIdentity {
    std::int32_t pid = 0;
    std::uint64_t startTime = 0; ///< In the system's unit; 0 where numbers alone must do.

    friend bool operator==(const ProcessIdentity &, const ProcessIdentity &) = default;
};

/// Who has this number now; absent when nobody does any more.
using IdentityReader = std::function<std::optional<ProcessIdentity>(std::int32_t pid)>;

} // namespace corvane
