#pragma once

#include "models/MappedFiles.h"

#include <functional>
#include <string>
#include <vector>

namespace corvane {

/// Reads which model files a process uses. The system answers for the user's own processes alone.
/// The functions keep no state and are safe from any thread; they may never return: what they read
/// can depend on what the process waits for.
struct ModelFiles {
    /// Those in its address space.
    std::function<std::vector<MappedFile>(std::int32_t pid)> mapped;

    /// Paths of those that it has open, in the order of their descriptors.
    std::function<std::vector<std::string>(std::int32_t pid)> opened;

    /// Under which path this program finds what the process calls `path`, which is absolute: they
    /// differ in a container.
    std::function<std::string(std::int32_t pid, const std::string &path)> reachable;

    /// The system that the program runs on.
    static ModelFiles system();
};

} // namespace corvane
