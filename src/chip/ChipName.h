#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// What the system calls its processor, untrimmed and possibly empty; nothing when it does not
/// tell. `root` is the folder below which kernel files are read (Linux). Any thread.
std::optional<std::string> readChipName(const std::string &root = "/");

/// The first "model name" of /proc/cpuinfo, possibly empty; only x86 kernels write it. Pure.
std::optional<std::string> processorName(std::string_view cpuInfo);

} // namespace corvane
