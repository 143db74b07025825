#include "support/SystemCalls.h"

#include <QRegularExpression>
#include <QSet>

namespace corvane::test {

using namespace Qt::StringLiterals;

QStringList SystemCall::paths() const
{
    // AT_FDCWD</home>, "file"
    static const QRegularExpression pattern(uR"re((?:<([^>]*)>, )?"((?:[^"\\]|\\.)*)")re"_s);
    QStringList found;
    auto matches = pattern.globalMatch(QString::fromUtf8(arguments));
    while (matches.hasNext()) {
        const auto match = matches.next();
        const QString path = match.captured(2);
        found.append(path.startsWith(u'/') ? path : match.captured(1) + u'/' + path);
    }
    return found;
}

bool SystemCall::changesFiles() const
{
    static const QSet<QByteArray> changes{
        "creat",   "rename",   "renameat",  "renameat2", "unlink",    "unlinkat",   "link",
        "linkat",  "symlink",  "symlinkat", "mkdir",     "mkdirat",   "rmdir",      "mknod",
        "mknodat", "truncate", "chmod",     "fchmodat",  "chown",     "lchown",     "fchownat",
        "utime",   "utimes",   "utimensat", "setxattr",  "lsetxattr", "removexattr"};
    if (name == "open" || name == "openat" || name == "openat2")
        return arguments.contains("O_WRONLY") || arguments.contains("O_RDWR")
            || arguments.contains("O_CREAT") || arguments.contains("O_TRUNC")
            || arguments.contains("O_TMPFILE");
    return changes.contains(name) && !arguments.contains(" = -1 EEXIST");
}

bool SystemCall::startsProcess() const
{
    if (name == "clone" || name == "clone3")
        return !arguments.contains("CLONE_THREAD");
    return name == "fork" || name == "vfork" || name == "execve" || name == "execveat";
}

QList<SystemCall> systemCalls(const QByteArray &trace)
{
    static const QRegularExpression begin(uR"(^\d+ +(\w+)\((.*)$)"_s);
    QList<SystemCall> calls;
    for (const QByteArray &line : trace.split('\n')) {
        const auto match = begin.match(QString::fromUtf8(line));
        if (match.hasMatch())
            calls.append(
                {.name = match.captured(1).toUtf8(), .arguments = match.captured(2).toUtf8()});
    }
    return calls;
}

} // namespace corvane::test
