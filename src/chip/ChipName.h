#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// The system's name of its processor, untrimmed and possibly empty; absent when it has none. Any
/// thread.
std::optional<std::string> readChipName();

/// The first "model name" of /proc/cpuinfo, possibly empty; only x86 kernels write it.
std::optional<std::string> processorName(std::string_view cpuInfo);

} // namespace corvane
