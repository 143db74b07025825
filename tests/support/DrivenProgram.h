#pragma once

#include "support/AccessibilityBus.h"
#include "support/ProgramRun.h"

#include <QImage>
#include <QPoint>
#include <QStringList>
#include <QTest>

#include <optional>

/// QTRY_VERIFY with a deadline on the clock: evaluating these conditions takes long itself.
#define WAIT_FOR(condition)                                                                        \
    QVERIFY2(QTest::qWaitFor([&] { return bool(condition); }, 30'000), #condition)

namespace corvane::test {

/// The standard output of a command.
QString outputOf(const QString &tool, const QStringList &arguments);

void clickAt(const QPoint &point);
void press(const QString &key);

/// The title of the X window that has the keyboard focus.
QString activeWindow();

constexpr int barHeight = 30; ///< Pixels.

/// A screenshot of the desktop's bar, which is at the top of the screen.
QImage bar();

/// The real program on a virtual desktop whose bar has a tray, driven by pointer and keyboard and
/// read through the accessibility bus.
class DrivenProgram {
public:
    using Object = AccessibilityBus::Object;

    /// False without an accessibility bus.
    bool start(const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    AccessibilityBus &reader() { return m_reader; }
    ProgramRun &run() { return *m_run; } ///< After `start`.

    /// A point of the label on the bar; absent if the label is not visible.
    std::optional<QPoint> label() const;

    /// The open panel; absent while it is closed.
    std::optional<Object> panel() const;

    /// The first visible object of this role and beginning of its name below `root`; absent if
    /// none.
    std::optional<Object> find(const Object &root, const QString &role,
                               const QString &nameStart) const;
    /// The same in any window except the panel.
    std::optional<Object> find(const QString &role, const QString &nameStart) const;

    /// Whether any object of the program meets the condition.
    bool findAny(const AccessibilityBus::Condition &condition) const;

    bool isDashboardVisible() const;

    /// The program's errors and objects, for the message of a failed test. Saves a screenshot as
    /// desktop-failed.png in the working folder.
    QString failureReport();

private:
    std::optional<Object> root() const;

    AccessibilityBus m_reader;
    std::optional<ProgramRun> m_run;
};

} // namespace corvane::test
