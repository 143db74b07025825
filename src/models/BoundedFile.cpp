#include "models/BoundedFile.h"

#include "platform/KernelText.h"

#include <algorithm>
#include <array>
#include <memory>

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

constexpr int safeOpen = O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY;

BoundedFile::Version versionOf(const struct stat &status)
{
    return {.size = static_cast<std::uint64_t>(status.st_size),
            .number = status.st_ino,
            .modified = static_cast<std::int64_t>(status.st_mtime),
            .changed = static_cast<std::int64_t>(status.st_ctime)};
}

struct FolderCloser {
    void operator()(DIR *folder) const { closedir(folder); }
};

} // namespace

BoundedFile::BoundedFile(const std::string &path, Links links)
    : m_file(open(path.c_str(), safeOpen | (links == Links::refuse ? O_NOFOLLOW : 0)))
{
    struct stat status = {};
    if (m_file && (fstat(m_file.get(), &status) != 0 || !S_ISREG(status.st_mode)))
        m_file = {};
    if (!m_file)
        return;
    m_size = static_cast<std::uint64_t>(status.st_size);
    m_version = versionOf(status);
}

std::string BoundedFile::head(std::size_t most) const
{
    std::string bytes(static_cast<std::size_t>(std::min<std::uint64_t>(m_size, most)), '\0');
    std::size_t length = 0;
    while (length < bytes.size()) {
        const ssize_t count = pread(m_file.get(), bytes.data() + length, bytes.size() - length,
                                    static_cast<off_t>(length));
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return bytes;
}

std::optional<std::string> linkTarget(const std::string &path)
{
    std::array<char, PATH_MAX> target = {};
    const ssize_t length = readlink(path.c_str(), target.data(), target.size());
    if (length <= 0)
        return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(length));
}

std::vector<std::string> folderNames(const std::string &path, std::size_t most)
{
    FileDescriptor descriptor(open(path.c_str(), safeOpen | O_DIRECTORY | O_NOFOLLOW));
    const int number = descriptor ? dup(descriptor.get()) : -1;
    const std::unique_ptr<DIR, FolderCloser> folder(number < 0 ? nullptr : fdopendir(number));
    if (!folder && number >= 0)
        close(number);
    std::vector<std::string> names;
    while (folder && names.size() < most) {
        const dirent *entry = readdir(folder.get());
        if (!entry)
            break;
        const std::string name = entry->d_name;
        if (name != "." && name != ".." && isUtf8(name))
            names.push_back(name);
    }
    return names;
}

} // namespace corvane
