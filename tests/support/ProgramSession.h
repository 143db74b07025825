#pragma once

#include "support/FakeTray.h"
#include "support/PrivateBus.h"
#include "support/VirtualDisplay.h"

#include <QProcessEnvironment>
#include <QTemporaryDir>

#include <memory>

namespace corvane::test {

/// From when on calls fail: the program's start, the opening of its dashboard, or later without a
/// dashboard.
enum class Phase { start, dashboard, later };

/// A user's session in which a test runs the program: a home with folders of its own and, once they
/// are started, a session bus with a tray and an X display. All of it ends with the object. Main
/// thread; Linux.
class ProgramSession {
public:
    /// Without a bus and a display; Qt's offscreen platform is used.
    ProgramSession();

    /// A path below the home, which has the folders "config", "data", "cache", "runtime" and "tmp".
    QString path(const QString &name) const { return m_home.filePath(name); }
    QString homePath() const { return m_home.path(); }
    QString historyFile() const { return path(QStringLiteral("data/Corvane/history.jsonl")); }

    /// The socket of the program that runs; it is there once the program has started.
    QString socketPath() const
    {
        return path(QStringLiteral("runtime/" CORVANE_IDENTIFIER "/socket"));
    }

    /// False if it could not be created.
    bool makeFolder(const QString &name) const;

    /// Starts the bus, with a tray that looks like that program's; false on failure. With a tray
    /// the program does not open its dashboard at the start.
    bool startBus(const char *trayProgram = "xfce4-panel");

    /// Starts the display; false on failure. Programs use it from here on.
    bool startDisplay();

    /// Whether the tray shows the label, which has two numbers on every machine, and more on some.
    bool hasLabel() const { return tray->items().size() >= 2; }

    /// Opens the dashboard as a middle click on the label's first item does.
    void openDashboard() const;

    QProcessEnvironment environment;         ///< Of the programs to be started.
    std::unique_ptr<PrivateBus> bus;         ///< Null before `startBus`.
    std::unique_ptr<FakeTray> tray;          ///< On the bus.
    std::unique_ptr<VirtualDisplay> display; ///< Null before `startDisplay`.

private:
    QTemporaryDir m_home;
};

} // namespace corvane::test
