#include "platform/FileDescriptor.h"

#include <array>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

namespace {

FileIdentity identityOf(const struct stat &status)
{
    return {.device = static_cast<std::uint64_t>(status.st_dev), .number = status.st_ino};
}

} // namespace

FileDescriptor::~FileDescriptor()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
}

std::optional<FileIdentity> fileIdentity(const std::string &path)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        return std::nullopt;
    return identityOf(status);
}

std::optional<FileIdentity> fileIdentity(const FileDescriptor &file)
{
    struct stat status = {};
    if (fstat(file.get(), &status) != 0)
        return std::nullopt;
    return identityOf(status);
}

bool hasDescriptorsForAWindow()
{
    std::array<FileDescriptor, 16> files;
    for (FileDescriptor &file : files) {
        file = FileDescriptor(open("/dev/null", O_RDONLY | O_CLOEXEC));
        if (!file)
            return false;
    }
    return true;
}

FileDescriptor openRegular(const std::string &path, FileAccess access)
{
    const int mode = access == FileAccess::append ? O_WRONLY | O_APPEND : O_RDONLY;
    FileDescriptor file(open(path.c_str(), mode | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
    struct stat status = {};
    if (file && fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode))
        return file;
    return {};
}

} // namespace corvane
