#pragma once

#include <cstdint>
#include <string>

namespace corvane {

/// A program as the system knows it.
struct TrayProgram {
    std::string name = {};       ///< The kernel's short name, cut at 15 bytes; empty: not known.
    std::string executable = {}; ///< File name without its folder; empty: not known.
};

/// The program of that process; what cannot be read of it is empty. Any thread.
TrayProgram trayProgram(std::uint32_t process, const std::string &root = "/");

} // namespace corvane
