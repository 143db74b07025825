#include "support/OwnMounts.h"

#include <QByteArray>
#include <QFile>

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace corvane::test {

namespace {

void writeText(const char *path, const QByteArray &text)
{
    QFile file(QFile::decodeName(path));
    if (file.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        file.write(text);
}

} // namespace

/// On many systems an ordinary user may create a user namespace and mount there as root does.
bool unshareMounts()
{
    const QByteArray user = QByteArray::number(geteuid());
    const QByteArray group = QByteArray::number(getegid());
    if (unshare(geteuid() == 0 ? CLONE_NEWNS : CLONE_NEWUSER | CLONE_NEWNS) != 0)
        return false;
    if (user != "0") {
        writeText("/proc/self/uid_map", user + ' ' + user + " 1");
        writeText("/proc/self/setgroups", "deny");
        writeText("/proc/self/gid_map", group + ' ' + group + " 1");
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

} // namespace corvane::test
