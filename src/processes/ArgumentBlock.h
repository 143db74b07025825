#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// How a process was started.
struct ArgumentRecord {
    std::string path = {}; ///< The executable; empty when it could not be read as UTF-8.
    std::vector<std::string> argv = {}; ///< UTF-8; arguments that are not are left out.

    friend bool operator==(const ArgumentRecord &, const ArgumentRecord &) = default;
};

/// How the arguments of a process are read; absent when they cannot be.
using ArgumentReader = std::function<std::optional<ArgumentRecord>(std::int32_t pid)>;

/// A process with more arguments counts as one whose arguments cannot be read.
inline constexpr int mostArguments = 4096;

/// Reads the kernel's KERN_PROCARGS2 block: the count of arguments (32 bits, host order), the
/// executable's path, NULs, the arguments, then the environment, which is never read. Absent when
/// the block is shorter than its count or the count is out of range. A block that ends early gives
/// fewer arguments. Pure.
std::optional<ArgumentRecord> parseArgumentBlock(std::string_view block);

/// Reads Linux's /proc/PID/cmdline: arguments, each ended by a NUL. A program may overwrite it with
/// a title, which has no NUL or only NULs behind it and counts as one argument. Absent when there
/// are too many arguments. Pure.
std::optional<std::vector<std::string>> parseCommandLine(std::string_view commandLine);

} // namespace corvane
