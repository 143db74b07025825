#pragma once

#include "platform/HostSystem.h"

#include <QList>
#include <QObject>

class QAction;

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

    /// Enables the command for updates while a check is possible, and names an available version in
    /// its text.
    void connectUpdater(const UpdaterManager &updater);

    /// All actions in the order of a menu, with separators between the groups.
    QList<QAction *> inMenuOrder() const;

    /// The same for the dashboard, which is that window.
    QList<QAction *> besidesOpenWindow() const;

private:
    QAction *m_openWindow;
    QAction *m_about;
    QAction *m_checkForUpdates;
    QAction *m_settings;
    QAction *m_quit;
    QList<QAction *> m_separators;
};

} // namespace corvane
