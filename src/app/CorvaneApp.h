#pragma once

#include "app/AppState.h"
#include "app/Commands.h"
#include "panel/MenuBarContent.h"
#include "tray/TrayLabel.h"

#include <QObject>
#include <QPointer>

namespace corvane {

class ApplicationService;
class InstanceSocket;
class MainWindow;
class SettingsWindow;

/// The program: owns the state and shows it in the label, the panel and the dashboard. Made once,
/// after the QApplication; main thread.
class CorvaneApp : public QObject {
    Q_OBJECT

public:
    explicit CorvaneApp(QObject *parent = nullptr);
    ~CorvaneApp() override;

    /// Opens the dashboard, or brings it to the front, back from the taskbar too.
    void openMainWindow();

    /// The same of the settings.
    void openSettings();

    /// Does what later starts of the program and the desktop ask for.
    void obey(const InstanceSocket &socket, const ApplicationService &service);

private:
    void checkForUpdates();
    void connectCommands();
    void connectLabel();
    void connectPanel();
    void connectMainWindow();

    AppState m_state;
    Commands m_commands;
    TrayLabel m_label{m_commands.inMenuOrder()};
    MenuBarContent m_panel;
    std::unique_ptr<QMenuBar> m_menuBar; ///< At the top of a Mac's screen; null elsewhere.
    QPointer<MainWindow> m_mainWindow;   ///< It deletes itself when it is closed.
    QPointer<SettingsWindow> m_settings; ///< So does this.
};

/// Runs the program until the user quits; the exit status of the process.
int run(int argc, char **argv);

} // namespace corvane
