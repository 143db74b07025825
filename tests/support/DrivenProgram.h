#pragma once

#include "support/AccessibilityBus.h"

#include <QImage>
#include <QPoint>
#include <QProcess>
#include <QStringList>
#include <QTest>

#include <memory>
#include <optional>

/// As QTRY_VERIFY, by the clock: what is waited for here takes its time to look at.
#define WAIT_FOR(condition)                                                                        \
    QVERIFY2(QTest::qWaitFor([&] { return bool(condition); }, 30'000), #condition)

namespace corvane::test {

/// What a tool of the desktop says.
QString outputOf(const QString &tool, const QStringList &arguments);

void clickAt(const QPoint &point);
void press(const QString &key);

/// Title of the X window that gets the keys.
QString activeWindow();

constexpr int barHeight = 30;

/// What the desktop's bar looks like, along the top of the screen.
QImage bar();

/// The program itself on a virtual desktop with a bar that has a tray, driven by pointer and
/// keyboard and read as a screen reader reads it.
class DrivenProgram {
public:
    using Object = AccessibilityBus::Object;

    DrivenProgram();
    ~DrivenProgram();

    bool start(const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment());
    AccessibilityBus &reader() { return m_reader; }
    QProcess &process() { return m_process; }

    bool isRunning() const { return m_process.state() == QProcess::Running; }
    /// What it has said on its error output since the last call.
    QString complaints() { return QString::fromUtf8(m_process.readAllStandardError()); }

    /// A point of the label on the bar.
    std::optional<QPoint> label() const;

    /// The open panel.
    std::optional<Object> panel() const;

    /// The first such object that shows below this one.
    std::optional<Object> find(const Object &root, const QString &role,
                               const QString &nameStart) const;
    /// In any window but the panel.
    std::optional<Object> find(const QString &role, const QString &nameStart) const;

    bool dashboardShows() const;

    /// For the message of a failed test: leaves a picture of the screen in the working folder.
    QString lookAtFailure();

private:
    std::optional<Object> root() const;

    AccessibilityBus m_reader;
    QProcess m_process;
};

} // namespace corvane::test
