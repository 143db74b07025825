#include "platform/PrivateFolder.h"

#include "platform/FileDescriptor.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane {

bool makePrivateFolder(const std::string &folder)
{
    constexpr mode_t ownersOnly = 0700;
    mkdir(folder.c_str(), ownersOnly);
    const FileDescriptor opened(
        open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC | O_NONBLOCK));
    struct stat status = {};
    if (!opened || fstat(opened.get(), &status) != 0 || status.st_uid != geteuid())
        return false;
    return (status.st_mode & 0777) == ownersOnly || fchmod(opened.get(), ownersOnly) == 0;
}

} // namespace corvane
