#pragma once

#include <QtGlobal>

#include <QString>

namespace corvane {

/// Guards the construction of the QApplication, which aborts if it reaches no display: while this
/// lives, the process prints one line on standard error instead and exits with status 1. Qt's other
/// messages are held back, and printed when this is destroyed. Main thread.
class DisplayGuard {
public:
    DisplayGuard();
    ~DisplayGuard();
    DisplayGuard(const DisplayGuard &) = delete;
    DisplayGuard &operator=(const DisplayGuard &) = delete;

private:
    QtMessageHandler m_previous;
};

/// The line to print for Qt's fatal message; for one about a missing display, with the displays
/// that the environment names.
QString startFailureText(const QString &fatalMessage);

} // namespace corvane
