#pragma once

#include <string_view>

namespace corvane {

/// A reporting channel's name without "DIE_<n>_" at its start; unchanged when it starts otherwise.
std::string_view withoutDie(std::string_view name);

} // namespace corvane
