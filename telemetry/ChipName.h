#pragma once

#include <optional>
#include <string>

namespace corvane {

/// What the system calls its processor, untrimmed and possibly empty; nothing when it does not
/// tell. `root` is the folder below which kernel files are read (Linux). Any thread.
std::optional<std::string> readChipName(const std::string &root = "/");

} // namespace corvane
