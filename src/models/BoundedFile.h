#pragma once

#include "platform/FileDescriptor.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace corvane {

/// A regular file of somebody else's, open for reading. Opening never blocks and refuses folders,
/// devices and FIFOs; reads are bounded. What vanishes, shrinks or grows meanwhile is read as far
/// as it goes. A file on a disk or server that does not answer can still hold the caller up.
class BoundedFile {
public:
    /// Whether a link in the last place of the path is followed.
    enum class Links : std::uint8_t { follow, refuse };

    explicit BoundedFile(const std::string &path, Links links = Links::follow);

    /// False when there is no such file, or when it may not be read.
    explicit operator bool() const { return static_cast<bool>(m_file); }

    std::uint64_t size() const { return m_size; }

    /// Differs after a change of the contents.
    struct Version {
        std::uint64_t size = 0;
        std::uint64_t number = 0;  ///< The inode's: a file that is replaced has another one.
        std::int64_t modified = 0; ///< Whole seconds, as on every system.
        std::int64_t changed = 0;  ///< The same, of the inode.

        friend bool operator==(const Version &, const Version &) = default;
    };
    Version version() const { return m_version; }

    /// The first bytes, at most that many.
    std::string head(std::size_t most) const;

private:
    FileDescriptor m_file;
    std::uint64_t m_size = 0;
    Version m_version = {};
};

/// Where a link leads; absent for anything else.
std::optional<std::string> linkTarget(const std::string &path);

/// The names in a folder, at most that many, without "." and ".." and those that are not UTF-8.
/// Empty for a link and for what cannot be listed.
std::vector<std::string> folderNames(const std::string &path, std::size_t most);

} // namespace corvane
