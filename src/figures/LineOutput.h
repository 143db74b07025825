#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

namespace corvane {

/// Writes lines to a descriptor, such as standard output, without ever waiting for its reader:
/// while the reader is behind, only the newest line is kept for it. The owner keeps the descriptor
/// open; it may share its file with other processes, so it is left blocking. Main thread.
class LineOutput : public QObject {
    Q_OBJECT

public:
    explicit LineOutput(int descriptor, QObject *parent = nullptr);

    /// Sends a line, which ends with a newline, or keeps it until the one before it is through. An
    /// older line that is still kept is dropped.
    void send(const QByteArray &line);

    /// Whether nothing is left to write.
    bool isIdle() const { return m_current.isEmpty(); }

signals:
    void idle();   ///< Emitted when the last line is through.
    void closed(); ///< Emitted once: nobody reads any more.

private:
    void writeOn();
    void close();

    int m_descriptor;
    QSocketNotifier m_writable;
    QByteArray m_current = {}; ///< What is left of the line that is being written.
    QByteArray m_next = {};    ///< The newest line after it; empty if there is none.
    bool m_isClosed = false;
};

} // namespace corvane
