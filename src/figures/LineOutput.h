#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>

#include <system_error>

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

    /// Why it is closed: the reader is gone (a broken pipe), or the disk is full.
    std::error_code error() const { return m_error; }

signals:
    void idle();   ///< Emitted when the last line is through.
    void closed(); ///< Emitted once: nobody reads any more, or the file takes no more.

private:
    void writeOn();
    void close(int reason);

    int m_descriptor;
    QSocketNotifier m_writable;
    QByteArray m_current = {}; ///< What is left of the line that is being written.
    QByteArray m_next = {};    ///< The newest line after it; empty if there is none.
    bool m_isClosed = false;
    std::error_code m_error = {};
};

} // namespace corvane
