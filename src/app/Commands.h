#pragma once

#include "platform/HostSystem.h"

#include <QList>
#include <QObject>

#include <memory>

class QAction;
class QMenuBar;

namespace corvane {

class UpdaterManager;

/// What the user can have the program do: the same actions in the label's menus, the panel, the
/// windows and a Mac's menu bar. Owned by the application, which carries them out; main thread.
class Commands : public QObject {
    Q_OBJECT

public:
    explicit Commands(QObject *parent = nullptr, HostSystem system = hostSystem());

    QAction *openWindow() const { return m_openWindow; }
    QAction *about() const { return m_about; }
    QAction *checkForUpdates() const { return m_checkForUpdates; }
    QAction *settings() const { return m_settings; }
    QAction *quit() const { return m_quit; }

    /// Has updates be checked for only while they can be, and the command for it tell of one.
    void follow(const UpdaterManager &updater);

    /// In the order of a menu, with lines between the groups.
    QList<QAction *> inMenuOrder() const;

    /// For the top of the screen, where a Mac puts each into its place. It has nothing to make a
    /// new window with: there is one dashboard.
    std::unique_ptr<QMenuBar> makeMenuBar() const;

private:
    QAction *m_openWindow;
    QAction *m_about;
    QAction *m_checkForUpdates;
    QAction *m_settings;
    QAction *m_quit;
    QList<QAction *> m_lines;
};

} // namespace corvane
