#pragma once

#include "platform/FileDescriptor.h"

#include <string>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

namespace corvane::test {

/// A file system over a file or folder whose server takes every request and answers none. Requests
/// fail when the object goes. Linux; mostly needs `unshareMounts`.
class HangingMount {
public:
    explicit HangingMount(const std::string &path)
        : m_path(path),
          m_server(open("/dev/fuse", O_RDWR | O_CLOEXEC))
    {
        struct stat status = {};
        const bool isFolder = stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
        const std::string options = "fd=" + std::to_string(m_server.get())
            + ",rootmode=" + (isFolder ? "40000" : "100444")
            + ",user_id=" + std::to_string(geteuid()) + ",group_id=" + std::to_string(getegid());
        m_isMounted = m_server && mount("hanging", path.c_str(), "fuse", 0, options.c_str()) == 0;
    }
    ~HangingMount()
    {
        m_server = {};
        if (m_isMounted)
            umount2(m_path.c_str(), MNT_DETACH);
    }
    HangingMount(const HangingMount &) = delete;
    HangingMount &operator=(const HangingMount &) = delete;

    /// False where the system does not permit it.
    bool isMounted() const { return m_isMounted; }

private:
    std::string m_path;
    FileDescriptor m_server;
    bool m_isMounted = false;
};

/// Shows a file at the path of another one, for its life. Linux; mostly needs `unshareMounts`.
class BoundFile {
public:
    BoundFile(const std::string &file, const std::string &path)
        : m_path(path),
          m_isMounted(mount(file.c_str(), path.c_str(), nullptr, MS_BIND, nullptr) == 0)
    {
    }
    ~BoundFile()
    {
        if (m_isMounted)
            umount2(m_path.c_str(), MNT_DETACH);
    }
    BoundFile(const BoundFile &) = delete;
    BoundFile &operator=(const BoundFile &) = delete;

    /// False where the system does not permit it.
    bool isMounted() const { return m_isMounted; }

private:
    std::string m_path;
    bool m_isMounted;
};

} // namespace corvane::test
