#include "support/SystemCalls.h"

#include <QHash>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>

namespace corvane::test {

using namespace Qt::StringLiterals;

namespace {

/// True for calls that read files, wait, end, or use existing sockets, and for calls that create
/// processes and threads, which `startsProcess` reports.
bool leavesFilesAlone(const QByteArray &name)
{
    static const QSet<QByteArray> names{
        // Files.
        "access", "faccessat", "faccessat2", "stat", "lstat", "newfstatat", "fstatat64", "statx",
        "statfs", "readlink", "readlinkat", "getcwd", "chdir", "getxattr", "lgetxattr", "listxattr",
        "llistxattr", "inotify_add_watch",
        // Processes.
        "clone", "clone3", "fork", "vfork", "execve", "execveat", "exit", "exit_group", "wait4",
        "waitid",
        // Sockets, without bind, which creates a file.
        "socket", "socketpair", "connect", "listen", "accept", "accept4", "shutdown", "getsockname",
        "getpeername", "getsockopt", "setsockopt", "sendto", "sendmsg", "sendmmsg", "recvfrom",
        "recvmsg", "recvmmsg"};
    return names.contains(name);
}

/// The path of a descriptor, by which linkat gives a name to a file that was created without one.
bool isUnnamedFile(const QString &path)
{
    static const QRegularExpression descriptor(u"\\A/proc/self/fd/\\d+\\z"_s);
    return descriptor.match(path).hasMatch();
}

bool leadsUpwards(const QString &path)
{
    return path.contains("/../"_L1) || path.endsWith("/.."_L1);
}

} // namespace

QStringList SystemCall::paths() const
{
    // AT_FDCWD</home>, "file"; an @ precedes the name of a socket that is not a file.
    static const QRegularExpression named(uR"re((?:<([^>]*)>, )?(@?)"((?:[^"\\]|\\.)*)")re"_s);
    static const QRegularExpression opened(u"^\\d+<(/[^>]*)>"_s);
    const QString text = QString::fromUtf8(arguments);
    QStringList found;
    for (const auto &match : named.globalMatch(text)) {
        const QString folder = match.captured(1);
        const QString path = match.captured(2) + match.captured(3);
        if (path.startsWith(u'/') || folder.isEmpty())
            found.append(path);
        else
            found.append(path.isEmpty() ? folder : folder + u'/' + path);
    }
    if (const auto match = opened.match(text); found.isEmpty() && match.hasMatch())
        found.append(match.captured(1));
    return found;
}

bool SystemCall::changesFiles() const
{
    static const QRegularExpression opensForChange(
        u"\\b(O_WRONLY|O_RDWR|O_CREAT|O_TRUNC|(__)?O_TMPFILE)\\b"_s);
    static const QRegularExpression wasThere(u"\\) += -1 EEXIST "_s);
    const QString text = QString::fromUtf8(arguments);
    if (name == "open" || name == "openat" || name == "openat2")
        return opensForChange.match(text).hasMatch();
    return !leavesFilesAlone(name) && !wasThere.match(text).hasMatch();
}

bool SystemCall::startsProcess() const
{
    if (name == "clone" || name == "clone3")
        return !arguments.contains("CLONE_THREAD");
    return name == "fork" || name == "vfork" || name == "execve" || name == "execveat";
}

bool SystemCall::usesNetwork() const
{
    if (name == "socket" || name == "socketpair")
        return !arguments.startsWith("AF_UNIX,");
    static const QRegularExpression otherAddress(u"sa_family=(?!AF_UNIX\\b)"_s);
    return otherAddress.match(QString::fromUtf8(arguments)).hasMatch();
}

QList<SystemCall> systemCalls(const QByteArray &trace)
{
    static const QRegularExpression begin(uR"(^(\d+) +(\w+)\((.*)$)"_s);
    static const QRegularExpression rest(uR"(^(\d+) +<\.\.\. \w+ resumed>(.*)$)"_s);
    // The end of a process, also in the middle of a call; signals.
    static const QRegularExpression noCall(uR"(^\d+ +(\+\+\+|---|\?+\())"_s);
    static const QByteArray cut = " <unfinished ...>";
    QList<SystemCall> calls;
    QHash<QString, qsizetype> unfinished; // By process.
    for (const QByteArray &line : trace.split('\n')) {
        const QString text = QString::fromUtf8(line);
        if (const auto match = begin.match(text); match.hasMatch()) {
            QByteArray arguments = match.captured(3).toUtf8();
            if (arguments.endsWith(cut)) {
                arguments.chop(cut.size());
                unfinished[match.captured(1)] = calls.size();
            }
            calls.append({.name = match.captured(2).toUtf8(), .arguments = arguments});
        } else if (const auto end = rest.match(text);
                   end.hasMatch() && unfinished.contains(end.captured(1))) {
            calls[unfinished.take(end.captured(1))].arguments += end.captured(2).toUtf8();
        } else if (!line.isEmpty() && !noCall.match(text).hasMatch()) {
            calls.append({.name = {}, .arguments = line});
        }
    }
    return calls;
}

QList<QByteArray> forbiddenCalls(const QList<SystemCall> &calls, const QRegularExpression &writable)
{
    const QRegularExpression allowed(QRegularExpression::anchoredPattern(writable.pattern()));
    const auto isAllowed = [&allowed](const SystemCall &call) {
        const QStringList paths = call.paths();
        return !paths.isEmpty() && std::ranges::all_of(paths, [&](const QString &path) {
            return (allowed.match(path).hasMatch() && !leadsUpwards(path))
                || (call.name == "linkat" && isUnnamedFile(path));
        });
    };
    QList<QByteArray> found;
    for (const SystemCall &call : calls) {
        const bool isOwnStart = &call == &calls.first() && call.name == "execve";
        if ((call.changesFiles() && !isAllowed(call)) || call.usesNetwork()
            || (call.startsProcess() && !isOwnStart))
            found.append(call.name + '(' + call.arguments);
    }
    return found;
}

QString obstacleToTracing()
{
    QProcess strace;
    strace.start(u"strace"_s, {u"-o"_s, u"/dev/null"_s, u"true"_s});
    if (strace.waitForFinished() && strace.exitCode() == 0)
        return {};
    return u"Programs cannot be traced here: %1 %2"_s.arg(
        strace.errorString(), QString::fromLocal8Bit(strace.readAllStandardError()));
}

} // namespace corvane::test
