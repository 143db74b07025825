#pragma once

#include <string>

namespace corvane {

/// Names the calling thread, for debuggers and lists of threads. Linux keeps the last 15 bytes.
void nameThread(const std::string &name);

} // namespace corvane
