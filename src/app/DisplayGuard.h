#pragma once

#include <QtGlobal>

#include <QString>

namespace corvane {

/// Stands before the making of the QApplication, which aborts where no display can be reached: with
/// this around it, the process says so in one line on standard error and ends with status 1. What
/// Qt has to say meanwhile is held back, and said when the application is there. Main thread.
class DisplayGuard {
public:
    DisplayGuard();
    ~DisplayGuard();
    DisplayGuard(const DisplayGuard &) = delete;
    DisplayGuard &operator=(const DisplayGuard &) = delete;

private:
    QtMessageHandler m_previous;
};

/// The line for what Qt gives up with: that there is no display, and which one was asked for.
QString withoutDisplayLine(const QString &fatalMessage);

} // namespace corvane
