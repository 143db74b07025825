#pragma once

#include <string>
#include <vector>

namespace corvane {

/// The names in a folder of the kernel, shorter ones first, so that the tenth of a kind comes
/// behind the second. Empty when the folder cannot be listed.
std::vector<std::string> namesInFolder(const std::string &folder);

} // namespace corvane
