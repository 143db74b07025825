#pragma once

#include <optional>
#include <string>

namespace corvane {

/// `readChipName` for the Linux machine whose kernel files lie below `root`.
std::optional<std::string> readChipNameBelow(const std::string &root);

} // namespace corvane
