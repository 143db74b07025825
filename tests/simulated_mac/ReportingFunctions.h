#pragma once

#include <string_view>

namespace corvane::simulated {

/// The function of the reporting library that has this name, as the loader finds it; null for any
/// other name. There is no header for them: clients declare what they bind.
void *reportingFunction(std::string_view name);

} // namespace corvane::simulated
