#pragma once

#include <QProcess>
#include <QStringList>

namespace corvane::test {

/// Sees every message on a bus.
class BusMonitor {
public:
    explicit BusMonitor(const QString &address);
    ~BusMonitor();

    /// Members of all messages ("NewIcon") since the last call, once those that these connections
    /// sent so far have come by. Nothing but "monitor is deaf" if they never do.
    QStringList membersSince(const QStringList &connections);

private:
    void read();

    QProcess m_process;
    QStringList m_members;
    int m_marks = 0;
};

} // namespace corvane::test
