#pragma once

#include "settings/SettingsPage.h"

namespace corvane {

class LaunchAtLoginManager;
class Switch;

/// The switch for the start at login. Owned by the settings window; main thread.
class GeneralSettings : public SettingsPage {
    Q_OBJECT

public:
    explicit GeneralSettings(LaunchAtLoginManager &launch, QWidget *parent = nullptr);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void showState(const LaunchAtLoginManager &launch);
    void layOut();

    Switch *m_launch;
    SettingsNote *m_error;
    SettingsNote *m_note;
};

} // namespace corvane
