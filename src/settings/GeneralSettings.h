#pragma once

#include "settings/SettingsPage.h"

namespace corvane {

class AppSettings;
class LaunchAtLoginManager;
class MetricsFile;
class MetricsSettings;
class Switch;

/// The switch for the start at login, and below it the metrics file. Owned by the settings window;
/// main thread.
class GeneralSettings : public SettingsPage {
    Q_OBJECT

public:
    GeneralSettings(LaunchAtLoginManager &launch, AppSettings &settings, const MetricsFile &metrics,
                    QWidget *parent = nullptr);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void showState(const LaunchAtLoginManager &launch);
    void layOut();

    Switch *m_launch;
    SettingsNote *m_error;
    SettingsNote *m_note;
    MetricsSettings *m_metrics;
};

} // namespace corvane
