#pragma once

#include "cpu/CoreTicks.h"

#include <optional>
#include <vector>

namespace corvane {

/// The counters of all logical CPUs of this Mac, in processor order; absent when they cannot be
/// read. Any thread.
std::optional<std::vector<CoreTicks>> readCoreTicks();

} // namespace corvane
