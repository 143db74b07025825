#pragma once

#include "platform/FileDescriptor.h"

#include <QObject>

namespace corvane {

/// Ends the program as its "Quit" does when the system asks for it: SIGTERM, SIGINT or SIGHUP, or
/// the end of the session, which it neither delays nor survives. Made once, after the QApplication
/// and before what has to be finished at the end; main thread.
///
/// A signal that whoever started the program had ignored (nohup) stays ignored.
class QuitSignals : public QObject {
    Q_OBJECT

public:
    explicit QuitSignals(QObject *parent = nullptr);
    ~QuitSignals() override;

private:
    FileDescriptor m_readingEnd; ///< Of a pipe into which the signal handler writes.
    FileDescriptor m_writingEnd;
};

/// Lets a write to a closed pipe or socket fail instead of ending the process.
void ignoreBrokenPipes();

} // namespace corvane
