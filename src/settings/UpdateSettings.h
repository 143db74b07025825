#pragma once

#include "settings/SettingsPage.h"

namespace corvane {

class PanelButton;
class Switch;
class UpdaterManager;

/// The program's version and its checks for updates. Owned by the settings window; main thread.
class UpdateSettings : public SettingsPage {
    Q_OBJECT

public:
    explicit UpdateSettings(UpdaterManager &updater, QWidget *parent = nullptr);

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void showFinding(const UpdaterManager &updater);
    void layOut();

    const QString m_version;
    Switch *m_automatic;
    SettingsNote *m_note;
    SettingsNote *m_finding;
    PanelButton *m_checkNow;
};

} // namespace corvane
