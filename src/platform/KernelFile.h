#pragma once

#include "platform/FileDescriptor.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace corvane {

/// How the kernel hands a file out.
enum class KernelFileKind {
    oneRecord, ///< At once: a read with room to spare had it all. So does sysfs, and most of /proc.
    records,   ///< In pieces of a page or less; only a read of nothing tells the end.
};

/// A small text file of the kernel that is read again and again: opened once, then read from its
/// start with `pread`. Owned by one reader, used on one thread.
///
/// A file that is missing, refused, not regular or empty reads as nothing; it is looked for again
/// at the next read. Opening never blocks, so a FIFO in the file's place cannot hold the caller up.
class KernelFile {
public:
    explicit KernelFile(std::string path, KernelFileKind kind = KernelFileKind::oneRecord);

    /// The present contents, at most `limit` bytes of them; valid until the next read.
    std::optional<std::string_view> read(std::size_t limit = wholeFile);

    const std::string &path() const { return m_path; }

    static constexpr std::size_t wholeFile = 1 << 20; ///< No kernel file of use is longer.

private:
    std::string m_path;
    KernelFileKind m_kind;
    std::string m_buffer; ///< Kept, so that a steady tick allocates nothing.
    FileDescriptor m_file;
};

/// Contents of a file of either kind that is read once, by the rules above.
std::optional<std::string> readKernelFile(const std::string &path,
                                          std::size_t limit = KernelFile::wholeFile);

} // namespace corvane
