#include "platform/KernelFile_linux.h"

#include "platform/KernelText.h"

#include <algorithm>
#include <utility>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

/// Bytes at `offset`, or -1.
ssize_t readAt(const FileDescriptor &file, char *into, std::size_t size, std::size_t offset)
{
    ssize_t count = -1;
    do {
        count = pread(file.get(), into, size, static_cast<off_t>(offset));
    } while (count < 0 && errno == EINTR);
    return count;
}

} // namespace

KernelFile::KernelFile(std::string path, KernelFileKind kind)
    : m_path(std::move(path)),
      m_kind(kind)
{
}

std::optional<KernelFile::Place> KernelFile::Place::take()
{
    static constinit std::atomic<int> taken = 0;
    if (taken++ < mostKeptOpen)
        return Place(&taken);
    --taken;
    return std::nullopt;
}

std::optional<std::string_view> KernelFile::read(std::size_t limit)
{
    m_thread.check();
    if (!m_file)
        m_file = openRegular(m_path, FileAccess::read);
    if (!m_file)
        return std::nullopt;
    const auto text = readOpened(limit);
    if (m_file && !m_place)
        m_place = Place::take();
    if (!m_file || !m_place) {
        m_file = FileDescriptor();
        m_place.reset();
    }
    return text;
}

std::optional<std::string_view> KernelFile::readOpened(std::size_t limit)
{
    constexpr std::size_t firstSize = 4096;
    std::size_t length = 0;
    while (length < limit) {
        if (m_buffer.size() == length)
            m_buffer.resize(std::max(firstSize, m_buffer.size() * 2));
        const std::size_t room = std::min(m_buffer.size(), limit) - length;
        const ssize_t count = readAt(m_file, m_buffer.data() + length, room, length);
        if (count < 0) {
            // The device behind it may be gone and come back as another one.
            m_file = {};
            return std::nullopt;
        }
        length += static_cast<std::size_t>(count);
        const bool hadRoom = static_cast<std::size_t>(count) < room;
        if (count == 0 || (hadRoom && m_kind == KernelFileKind::oneRecord))
            break;
    }
    if (length == 0)
        return std::nullopt;
    return std::string_view(m_buffer).substr(0, length);
}

std::optional<std::string> readKernelFile(const std::string &path, std::size_t limit)
{
    KernelFile file(path, KernelFileKind::records);
    const auto contents = file.read(limit);
    if (!contents)
        return std::nullopt;
    return std::string(*contents);
}

std::string readTrimmedFile(const std::string &path)
{
    return std::string(trimmed(readKernelFile(path).value_or(std::string())));
}

bool isMountPoint(const std::string &path)
{
    // Without this flag, and for statfs, the kernel may ask the process that serves the file.
    constexpr int flags = AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT;
    struct statx status = {};
    return statx(AT_FDCWD, path.c_str(), flags, 0, &status) == 0
        && (status.stx_attributes & STATX_ATTR_MOUNT_ROOT) != 0;
}

} // namespace corvane
