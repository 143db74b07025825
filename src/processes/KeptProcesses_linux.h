#pragma once

#include "platform/FileDescriptor.h"
#include "processes/ArgumentFacts.h"
#include "processes/FootprintRanking.h"
#include "threads/Mutex.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// Reads the same small files of every process again and again. Opening and closing one costs twice
/// as much as reading it, so they are kept open, as many as a share of the limit of descriptors
/// allows; the others are opened for each read. Safe from any thread.
///
/// A kept file belongs to its process, not to the number: once that has ended, reading fails, also
/// when the number is another process's by then.
class KeptProcesses {
public:
    /// The machine's kernel files lie below `root`.
    explicit KeptProcesses(std::string root);

    /// All processes in the order of their numbers. One that has ended or may not be inspected is
    /// left out.
    std::vector<FootprintBounds> footprints();

    /// The contents of `comm`, which change when the process starts another program; absent when
    /// the process has ended.
    std::optional<std::string> comm(std::int32_t pid);

    /// Absent when nobody has that number.
    std::optional<ProcessIdentity> identity(std::int32_t pid);

    /// Closes all files.
    void close();

private:
    struct Process {
        std::int32_t pid = 0;
        FileDescriptor statm = {};
        FileDescriptor comm = {};                    ///< Open once the name was asked for.
        std::optional<std::uint64_t> startTime = {}; ///< Absent until it is asked for.
    };

    static void closeFiles(Process &process);
    std::string_view readStatm(int folder, std::int32_t pid, Process &process) REQUIRES(m_mutex);
    std::string_view readText(const FileDescriptor &file) REQUIRES(m_mutex);
    FileDescriptor openIn(int folder, std::int32_t pid, std::string_view file) REQUIRES(m_mutex);
    void keep(Process process) REQUIRES(m_mutex);
    bool hasRoom() const REQUIRES(m_mutex);
    Process *find(std::int32_t pid) REQUIRES(m_mutex);
    std::string path(std::int32_t pid, const char *file) const;

    const std::string m_root;
    Mutex m_mutex;
    std::vector<Process> m_kept GUARDED_BY(m_mutex);       ///< In the order of their numbers.
    std::vector<Process> m_before GUARDED_BY(m_mutex);     ///< Those that a pass has yet to visit.
    std::size_t m_names GUARDED_BY(m_mutex) = 0;           ///< How many of them have `comm` open.
    std::size_t m_most GUARDED_BY(m_mutex) = 0;            ///< Descriptors that may be kept now.
    std::array<char, 256> m_text GUARDED_BY(m_mutex) = {}; ///< Seven counts, or a name, fit.
};

} // namespace corvane
