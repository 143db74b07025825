#pragma once

#include "app/TrayHost.h"

#include <cstdint>

namespace corvane {

/// The program of that process; what cannot be read of it is empty. Any thread.
TrayProgram trayProgram(std::uint32_t process, const std::string &root = "/");

} // namespace corvane
