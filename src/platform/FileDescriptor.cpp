#include "platform/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

FileDescriptor::~FileDescriptor()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
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
