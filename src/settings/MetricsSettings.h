#pragma once

#include "settings/SettingsPage.h"

#include <functional>

namespace corvane {

class AppSettings;
class MetricsFile;
class PanelButton;
class Switch;

/// The switch and the folder for the metrics file. Owned by the general page; main thread.
class MetricsSettings : public SettingsPage {
    Q_OBJECT

public:
    MetricsSettings(AppSettings &settings, const MetricsFile &metrics, QWidget *parent);

    /// Asks the user for a folder, beginning with the one that is passed; returns an empty one if
    /// the user chose none. A test replaces it.
    std::function<QString(const QString &)> askForFolder;

    /// Taken without asking while no folder was chosen; empty: the user is asked. A test replaces
    /// it.
    QString usualFolder;

    std::vector<AccessibleText> accessibleTexts() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void switchTo(bool isOn);
    bool choose();
    void showState();
    void layOut();
    QString folderText() const;

    AppSettings &m_settings;
    const MetricsFile &m_metrics;
    Switch *m_switch;
    PanelButton *m_choose;
    SettingsNote *m_error;
    SettingsNote *m_note; ///< Gives way to the error.
};

} // namespace corvane
