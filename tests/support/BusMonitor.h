#pragma once

#include "support/SpawnedProgram.h"

#include <QByteArray>
#include <QStringList>

namespace corvane::test {

/// Records every message on a bus.
class BusMonitor {
public:
    explicit BusMonitor(const QString &address);

    /// The members of all calls and signals ("NewIcon") since the last call, including everything
    /// that these connections have sent so far. Only "monitor received nothing" if that does not
    /// arrive.
    QStringList membersSince(const QStringList &connections);

private:
    void read();

    SpawnedProgram m_process;
    QByteArray m_output; ///< The beginning of a line that is not complete yet.
    QStringList m_members;
    int m_marks = 0;
};

} // namespace corvane::test
