#pragma once

#include "app/AppState.h"
#include "app/MenuBarContent.h"
#include "app/TrayLabel.h"

#include <QObject>
#include <QPointer>

namespace corvane {

class ApplicationService;
class InstanceSocket;
class MainWindow;

/// The program: owns the state and shows it in the label, the panel and the dashboard. Made once,
/// after the QApplication; main thread.
class CorvaneApp : public QObject {
    Q_OBJECT

public:
    explicit CorvaneApp(QObject *parent = nullptr);

    /// Opens the dashboard, or brings it to the front, back from the taskbar too.
    void openMainWindow();

    /// Does what later starts of the program and the desktop ask for.
    void obey(const InstanceSocket &socket, const ApplicationService &service);

private:
    void connectLabel();
    void connectPanel();
    void connectMainWindow();

    AppState m_state;
    TrayLabel m_label;
    MenuBarContent m_panel;
    QPointer<MainWindow> m_mainWindow; ///< Null while closed; a closed window deletes itself.
};

/// Runs the program until the user quits; the exit status of the process.
int run(int argc, char **argv);

} // namespace corvane
