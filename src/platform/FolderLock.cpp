#include "platform/FolderLock.h"

#include <utility>

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

namespace corvane {

FolderLock::FolderLock(std::string folder) : m_folder(std::move(folder)) { }

FolderLock::Holder FolderLock::take()
{
    m_thread.check();
    if (holdsPresentFolder())
        return Holder::self;
    m_descriptor = FileDescriptor();
    FileDescriptor folder(open(m_folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (!folder)
        return Holder::nobody;
    if (flock(folder.get(), LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK ? Holder::other : Holder::nobody;
    m_descriptor = std::move(folder);
    return Holder::self;
}

bool FolderLock::holdsPresentFolder() const
{
    return m_descriptor && fileIdentity(m_descriptor) == fileIdentity(m_folder);
}

} // namespace corvane
