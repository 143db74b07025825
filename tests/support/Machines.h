#pragma once

#include <string>

namespace corvane::test {

/// The folder of a machine's kernel files in tests/machines, to be passed to a reader as its root.
std::string machine(const std::string &name);

} // namespace corvane::test
