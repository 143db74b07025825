#pragma once

#include "support/SpawnedProgram.h"

#include <QByteArray>
#include <QStringList>

namespace corvane::test {

/// Sees every message on a bus.
class BusMonitor {
public:
    explicit BusMonitor(const QString &address);

    /// Members of all messages ("NewIcon") since the last call, once those that these connections
    /// sent so far have come by. Nothing but "monitor is deaf" if they never do.
    QStringList membersSince(const QStringList &connections);

private:
    void read();

    SpawnedProgram m_process;
    QByteArray m_output; ///< That does not make a line yet.
    QStringList m_members;
    int m_marks = 0;
};

} // namespace corvane::test
