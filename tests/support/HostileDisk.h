#pragma once

#include <QtGlobal>

#include <csignal>

#include <sys/resource.h>
#include <unistd.h>

namespace corvane::test {

/// While an object of this type exists, no file can grow, as on a full disk.
class FullDisk {
public:
    FullDisk()
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit none{.rlim_cur = 0, .rlim_max = m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &none);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }
    FullDisk(const FullDisk &) = delete;
    FullDisk &operator=(const FullDisk &) = delete;

private:
    rlimit m_before = {};
};

/// While an object of this type exists, root acts as an ordinary user, since root may write
/// anywhere. Without effect for other users.
class OrdinaryUser {
public:
    OrdinaryUser() { m_isRoot = geteuid() == 0 && seteuid(65534) == 0; }
    ~OrdinaryUser()
    {
        if (m_isRoot && seteuid(0) != 0)
            qFatal("cannot become root again");
    }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

private:
    bool m_isRoot = false;
};

} // namespace corvane::test
