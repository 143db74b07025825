#include "platform/FolderLock.h"

#include <utility>

#include <fcntl.h>
#include <sys/file.h>

namespace corvane {

FolderLock::FolderLock(std::string folder) : m_folder(std::move(folder)) { }

bool FolderLock::take()
{
    if (m_descriptor)
        return true;
    FileDescriptor folder(open(m_folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder && flock(folder.get(), LOCK_EX | LOCK_NB) == 0)
        m_descriptor = std::move(folder);
    return static_cast<bool>(m_descriptor);
}

} // namespace corvane
