#pragma once

#include <string_view>

namespace corvane {

/// A reporting channel's name without "DIE_<n>_" or "DIE<n> " (macOS 27) at its start; unchanged
/// when it starts otherwise.
std::string_view withoutDie(std::string_view name);

} // namespace corvane
