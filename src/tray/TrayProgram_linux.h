#pragma once

#include <cstdint>
#include <string>

namespace corvane {

/// The names by which the system knows a program.
struct TrayProgram {
    std::string name = {};       ///< The kernel's short name, cut at 15 bytes; empty if unknown.
    std::string executable = {}; ///< File name without its folder; empty if unknown.
};

/// The program that this process runs; names that cannot be read are empty. Any thread.
TrayProgram trayProgram(std::uint32_t process, const std::string &root = "/");

} // namespace corvane
