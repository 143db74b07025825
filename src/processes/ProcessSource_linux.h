#pragma once

#include "processes/ProcessSource.h"

namespace corvane {

/// The processes of the machine whose kernel files lie below `root`.
ProcessSource linuxProcesses(const std::string &root);

} // namespace corvane
