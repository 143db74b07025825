#pragma once

#include "app/Activity.h"
#include "app/AppState.h"
#include "app/Commands.h"
#include "panel/MenuBarContent.h"
#include "tray/TrayLabel.h"
#include "windows/WindowPlatform.h"

#include <QObject>
#include <QPointer>

class QMenuBar;

namespace corvane {

class ApplicationService;
class InstanceSocket;
class MainWindow;
class NoticeBar;
class SettingsWindow;

/// The program: owns the state and shows it in the label, the panel and the dashboard. Created
/// once, after the QApplication; main thread.
class CorvaneApp : public QObject {
    Q_OBJECT

public:
    /// Started in the background, it opens no window by itself, even without a label.
    explicit CorvaneApp(bool isBackground = false, QObject *parent = nullptr);
    ~CorvaneApp() override;

    /// Opens the dashboard, or brings it to the front, restored if it was minimized.
    void openMainWindow();

    /// Opens the settings, or brings them to the front in the same way.
    void openSettings();

    /// Carries out the requests of later starts and of the desktop.
    void connectRequests(const InstanceSocket &socket, const ApplicationService &service);

private:
    void showTrayAdvice(const QString &advice);
    void checkForUpdates();
    void connectCommands();
    void connectFocus();
    void connectLabel(bool isBackground);
    void connectMetrics();
    void connectPanel();
    void followVisibility();
    void connectMainWindow();
    void connectHistoryWindow();

    Activity m_activity;
    AppState m_state;
    Commands m_commands;
    TrayLabel m_label{m_commands.inMenuOrder()};
    MenuBarContent m_panel;
    std::unique_ptr<QMenuBar> m_menuBar;       ///< A Mac's; null elsewhere.
    std::unique_ptr<CloseObserver> m_closings; ///< Of all windows; null where nobody has to know.
    ProcessInterest m_processInterest;         ///< Held while the dashboard can be seen.
    QPointer<MainWindow> m_mainWindow;         ///< Deletes itself when it is closed.
    QPointer<NoticeBar> m_trayAdvice;          ///< In the dashboard; null while there is none.
    QPointer<SettingsWindow> m_settings;       ///< Deletes itself when it is closed.
    int m_openings = 0;                        ///< Dashboards so far.
    bool m_isAskedToOpen = false;              ///< The dashboard opens with the next events.
};

/// Runs the program until the user quits. Returns the exit status of the process.
int run(int argc, char **argv);

} // namespace corvane
