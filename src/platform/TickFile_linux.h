#pragma once

#include "platform/BootClock.h"
#include "platform/KernelFile_linux.h"
#include "threads/BackgroundReader.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// A file of the kernel that each tick reads. The tick reads it itself, as the kernel answers it
/// from its own counters; to hand it over from another thread would wake two threads more in each
/// tick. Where a file system is mounted over it, as in containers to which a process reports their
/// share of the machine, a thread of its own reads it, and the tick waits for an answer 20 ms at
/// most. What was asked for more than 2.5 s ago is absent. Used on one thread.
class TickFile {
public:
    explicit TickFile(const std::string &path, std::function<double()> now = secondsSinceBoot);

    /// As `KernelFile::read`.
    std::optional<std::string_view> read();

private:
    using Text = std::optional<std::string>;

    KernelFile m_file;
    std::function<double()> m_now;
    std::unique_ptr<BackgroundReader<Text>> m_reader = {}; ///< Null where the tick reads itself.
    Text m_newest = {};                                    ///< Of the reader.
};

} // namespace corvane
