#pragma once

#include <QByteArray>
#include <QList>
#include <QStringList>

namespace corvane::test {

/// A call of the system as strace wrote it down, with -f and -y.
struct SystemCall {
    QByteArray name = {};
    QByteArray arguments = {}; ///< As written; with the result, unless another thread came between.

    /// Absolute paths among the arguments.
    QStringList paths() const;

    /// Whether it makes, changes or takes away what is in a file system, or tries to.
    bool changesFiles() const;

    /// Whether it makes another process, or turns into one.
    bool startsProcess() const;
};

/// In the order in which they began.
QList<SystemCall> systemCalls(const QByteArray &trace);

} // namespace corvane::test
