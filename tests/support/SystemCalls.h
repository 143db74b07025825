#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>

class QRegularExpression;

namespace corvane::test {

/// A call of the system as strace wrote it down, with -f and -y.
struct SystemCall {
    QByteArray name = {};      ///< Empty for a line that cannot be read.
    QByteArray arguments = {}; ///< As written, with the result behind them.

    /// Those among the arguments, or else of the descriptor that is the first one. Absolute, unless
    /// it cannot be told from where one starts.
    QStringList paths() const;

    /// Whether it makes, changes or takes away what is in a file system, or tries to. A call that
    /// is not known not to does.
    bool changesFiles() const;

    /// Whether it makes another process, or turns into one.
    bool startsProcess() const;

    /// Whether it speaks through a socket that is no Unix one, or makes such a socket.
    bool usesNetwork() const;
};

/// What strace has to trace (-e) for `offences` to be all there are.
inline constexpr auto tracedCalls =
    "trace=%file,%process,%network,fchmod,fchown,fsetxattr,fremovexattr,io_uring_setup";

/// In the order in which they began.
QList<SystemCall> systemCalls(const QByteArray &trace);

/// The calls of a traced program that start another one, use the network, or change files whose
/// paths do not match from end to end. The first call of all is the program's own start.
QList<QByteArray> offences(const QList<SystemCall> &calls, const QRegularExpression &mayChange);

/// Why nothing can be traced here; empty if it can.
QString obstacleToTracing();

} // namespace corvane::test
