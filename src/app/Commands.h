#pragma once

#include "platform/HostSystem.h"
#include "records/HistoryWindow.h"

#include <QList>
#include <QObject>

class QAction;
class QActionGroup;

namespace corvane {

class UpdaterManager;

/// The user's commands: the same actions in the label's menus, the panel, the windows and a Mac's
/// menu bar. Owned by the application, which carries them out; main thread.
class Commands : public QObject {
    Q_OBJECT

public:
    explicit Commands(QObject *parent = nullptr, HostSystem system = hostSystem());

    QAction *openWindow() const { return m_openWindow; }
    QAction *about() const { return m_about; }
    QAction *checkForUpdates() const { return m_checkForUpdates; }
    QAction *settings() const { return m_settings; }
    QAction *quit() const { return m_quit; }

    /// Shows which window of time the charts have.
    void setHistoryWindow(HistoryWindow window);

    /// The commands that choose a window of time, with the keys 1 to 4.
    QList<QAction *> historyWindows() const;

    /// Enables the command for updates while a check is possible, and names an available version in
    /// its text.
    void connectUpdater(const UpdaterManager &updater);

    /// All actions in the order of a menu, with separators between the groups.
    QList<QAction *> inMenuOrder() const;

    /// The same for the dashboard, which is that window, below those of its charts.
    QList<QAction *> ofDashboard() const;

signals:
    void historyWindowChosen(corvane::HistoryWindow window);

private:
    QList<QAction *> besidesOpenWindow() const;

    QAction *m_openWindow;
    QAction *m_about;
    QAction *m_checkForUpdates;
    QAction *m_settings;
    QAction *m_quit;
    QActionGroup *m_historyWindows;
    QList<QAction *> m_separators;
};

} // namespace corvane
