#pragma once

#include <string_view>

namespace corvane {

/// A reporting channel's name without "DIE_<n>_" at its start; as it is when it does not start so.
/// Pure.
std::string_view withoutDie(std::string_view name);

} // namespace corvane
