#pragma once

#include <string>

namespace corvane::test {

/// Folder of another machine's kernel files, to be given to a reader as its root.
std::string machine(const std::string &name);

} // namespace corvane::test
