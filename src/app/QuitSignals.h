#pragma once

#include "platform/FileDescriptor.h"

#include <QObject>

namespace corvane {

/// Quits the program, as its "Quit" command does, on SIGTERM, SIGINT or SIGHUP. At the end of the
/// session the program ends too, and asks not to be restarted with the next one. Created once,
/// after the QApplication and before what has work to finish at the end; main thread.
///
/// From the first signal on, or from the "Quit" command, the program has four seconds to end: a
/// disk or a server that hangs cannot keep it. A signal that comes two seconds later ends it at
/// once. What the history has not written by then is lost.
///
/// A signal that was ignored when the program started (nohup) stays ignored.
class QuitSignals : public QObject {
    Q_OBJECT

public:
    explicit QuitSignals(QObject *parent = nullptr);
    ~QuitSignals() override;

private:
    void handleSignals();

    FileDescriptor m_readingEnd; ///< Of a pipe to which the signal handler writes.
    FileDescriptor m_writingEnd;
};

} // namespace corvane
