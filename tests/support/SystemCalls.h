#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>

class QRegularExpression;

namespace corvane::test {

/// A system call as traced by strace with -f and -y.
struct SystemCall {
    QByteArray name = {};      ///< Empty for a line that cannot be read.
    QByteArray arguments = {}; ///< As strace writes them, followed by the result.

    /// The paths among the arguments; without any, that of a descriptor in the first argument. They
    /// are absolute, unless the folder that a relative one starts from is unknown.
    QStringList paths() const;

    /// Whether the call creates, changes or removes anything in a file system, or tries to. True
    /// for any call that is not in the list of harmless ones.
    bool changesFiles() const;

    /// Whether the call creates a process or executes a program.
    bool startsProcess() const;

    /// Whether the call creates or uses a socket that is not a Unix one.
    bool usesNetwork() const;
};

/// The option of strace (-e) that traces every call which `forbiddenCalls` may report.
inline constexpr auto tracedCalls =
    "trace=%file,%process,%network,fchmod,fchown,fsetxattr,fremovexattr,io_uring_setup";

/// The calls of a trace, in the order in which they began.
QList<SystemCall> systemCalls(const QByteArray &trace);

/// The calls of a traced program that start another program, use the network, or change files whose
/// whole paths do not match `writable`. The first call of all is the program's own start.
QList<QByteArray> forbiddenCalls(const QList<SystemCall> &calls,
                                 const QRegularExpression &writable);

/// The reason why programs cannot be traced here; empty if they can.
QString obstacleToTracing();

} // namespace corvane::test
