#pragma once

#include <QWidget>

#include <array>

namespace corvane {

class AppSettings;
class LaunchAtLoginManager;
class MetricsFile;
class SettingsPage;
class SettingsTabs;
class UpdaterManager;

enum class SettingsTab { general, updates };

/// The settings window, with a tab for the start at login and the metrics file, and one for
/// updates. Created by the application when it is opened; main thread. It reads the system's state
/// again each time that it comes to the front. Escape closes it.
class SettingsWindow : public QWidget {
    Q_OBJECT

public:
    SettingsWindow(LaunchAtLoginManager &launch, UpdaterManager &updater, AppSettings &settings,
                   const MetricsFile &metrics, QWidget *parent = nullptr);

    void showTab(SettingsTab tab);

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    bool event(QEvent *event) override;

private:
    void showPage(int index);
    void readAgain();

    LaunchAtLoginManager &m_launch;
    UpdaterManager &m_updater;
    SettingsTabs *m_tabs;
    std::array<SettingsPage *, 2> m_pages; ///< In the order of the tabs.
};

} // namespace corvane
