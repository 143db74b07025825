#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

namespace corvane {

/// Owns an open file of the system. Empty when opening failed.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) { }
    ~FileDescriptor();
    FileDescriptor(FileDescriptor &&other) noexcept
        : m_descriptor(std::exchange(other.m_descriptor, -1))
    {
    }
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;

    explicit operator bool() const { return m_descriptor >= 0; }
    int get() const { return m_descriptor; }

private:
    int m_descriptor = -1;
};

/// What distinguishes a file or folder from one that takes its place.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t number = 0; ///< The inode's.

    friend bool operator==(const FileIdentity &, const FileIdentity &) = default;
};

/// Absent if nothing is there.
std::optional<FileIdentity> fileIdentity(const std::string &path);
std::optional<FileIdentity> fileIdentity(const FileDescriptor &file);

/// Whether the process may open as many more files as a window takes: for fonts and images, and for
/// what threads wait with. Libraries abort or hang where they are refused one of these.
bool hasDescriptorsForAWindow();

enum class FileAccess { read, append };

/// Opens a regular file that exists, and nothing else. Never blocks: a FIFO, device or folder in
/// its place is refused.
FileDescriptor openRegular(const std::string &path, FileAccess access);

} // namespace corvane
