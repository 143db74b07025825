#include "platform/KernelFile.h"

#include <algorithm>
#include <utility>

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

int openRegular(const std::string &path)
{
    const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY);
    if (descriptor < 0)
        return -1;
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode))
        return descriptor;
    close(descriptor);
    return -1;
}

/// Bytes at `offset`, or -1.
ssize_t readAt(int descriptor, char *into, std::size_t size, std::size_t offset)
{
    ssize_t count = -1;
    do {
        count = pread(descriptor, into, size, static_cast<off_t>(offset));
    } while (count < 0 && errno == EINTR);
    return count;
}

} // namespace

KernelFile::KernelFile(std::string path) : m_path(std::move(path)) { }

KernelFile::~KernelFile()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

KernelFile::KernelFile(KernelFile &&other) noexcept
    : m_path(std::move(other.m_path)),
      m_buffer(std::move(other.m_buffer)),
      m_descriptor(std::exchange(other.m_descriptor, -1))
{
}

KernelFile &KernelFile::operator=(KernelFile &&other) noexcept
{
    std::swap(m_path, other.m_path);
    std::swap(m_buffer, other.m_buffer);
    std::swap(m_descriptor, other.m_descriptor);
    return *this;
}

std::optional<std::string_view> KernelFile::read(std::size_t limit)
{
    constexpr std::size_t firstSize = 4096;
    if (m_descriptor < 0)
        m_descriptor = openRegular(m_path);
    if (m_descriptor < 0)
        return std::nullopt;

    // Only a read of nothing tells the end: a longer file comes by records, and a read stops before
    // the record that no longer fits the kernel's page.
    std::size_t length = 0;
    while (length < limit) {
        if (m_buffer.size() == length)
            m_buffer.resize(std::max(firstSize, m_buffer.size() * 2));
        const std::size_t room = std::min(m_buffer.size(), limit) - length;
        const ssize_t count = readAt(m_descriptor, m_buffer.data() + length, room, length);
        if (count < 0) {
            // The device behind it may be gone and come back as another one.
            close(std::exchange(m_descriptor, -1));
            return std::nullopt;
        }
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
    }
    if (length == 0)
        return std::nullopt;
    return std::string_view(m_buffer).substr(0, length);
}

std::optional<std::string> readKernelFile(const std::string &path, std::size_t limit)
{
    KernelFile file(path);
    const auto contents = file.read(limit);
    if (!contents)
        return std::nullopt;
    return std::string(*contents);
}

} // namespace corvane
