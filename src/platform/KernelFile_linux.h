#pragma once

#include "platform/FileDescriptor.h"
#include "threads/OneThread.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// How the kernel returns the contents of a file.
enum class KernelFileKind {
    oneRecord, ///< In one piece, as in sysfs and most of /proc: a read that leaves room has it all.
    records,   ///< In pieces of a page or less: only a read of 0 bytes marks the end.
};

/// A small text file of the kernel that is read again and again: opened once, then read from its
/// start with `pread`. Owned by one reader, used on one thread.
///
/// Only `mostKeptOpen` files of the program stay open between two reads; a machine with more CPUs
/// or sensors than that has its further files opened and closed by each read.
///
/// A file that is missing, refused, empty or not regular reads as absent; the next read looks for
/// it again. Opening never blocks, so a FIFO in the file's place cannot hold the caller up.
class KernelFile {
public:
    explicit KernelFile(std::string path, KernelFileKind kind = KernelFileKind::oneRecord);

    /// The present contents, at most `limit` bytes of them; valid until the next read.
    std::optional<std::string_view> read(std::size_t limit = wholeFile);

    const std::string &path() const { return m_path; }

    static constexpr std::size_t wholeFile = 1 << 20; ///< No kernel file that is used is longer.

    /// Machines with up to four GPUs mostly have fewer files than this that are read each second.
    /// The rest of the program has some 25 descriptors open, those of processes apart, so that it
    /// stays below 100 in all on a machine of any size.
    static constexpr int mostKeptOpen = 64;

private:
    /// Counts one file that stays open.
    class Place {
    public:
        /// Absent when all places are taken.
        static std::optional<Place> take();

    private:
        struct Leave {
            void operator()(std::atomic<int> *taken) const { --*taken; }
        };
        explicit Place(std::atomic<int> *taken) : m_taken(taken) { }
        std::unique_ptr<std::atomic<int>, Leave> m_taken;
    };

    std::optional<std::string_view> readOpened(std::size_t limit);

    std::string m_path;
    KernelFileKind m_kind;
    std::string m_buffer;              ///< Kept, so that a steady tick allocates no memory.
    std::optional<Place> m_place = {}; ///< Absent unless the file stays open.
    FileDescriptor m_file;
    OneThread m_thread;
};

/// The contents of a file of either kind that is read once, by the same rules.
std::optional<std::string> readKernelFile(const std::string &path,
                                          std::size_t limit = KernelFile::wholeFile);

/// The same without white space around it; empty if it is absent.
std::string readTrimmedFile(const std::string &path);

/// Whether a file system is mounted at that very path, as containers put files that a process
/// serves over some of /proc: such a process may hang, and with it who opens or reads the file.
/// False where nothing is there. Never waits for that file system. Any thread.
bool isMountPoint(const std::string &path);

} // namespace corvane
