#pragma once

#include "updates/BundleVersion.h"
#include "updates/SystemUpdater.h"

#include <QObject>

#include <memory>
#include <optional>

namespace corvane {

/// The version as the settings show it: "0.1.0 (1)".
QString versionText(const BundleVersion &bundle);

/// Updates as the settings and the menus show them. Owned by the application state; main thread.
class UpdaterManager : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool automaticallyChecks READ automaticallyChecks WRITE setAutomaticallyChecks NOTIFY
                   automaticallyChecksChanged)
    Q_PROPERTY(bool canCheck READ canCheck NOTIFY canCheckChanged)
    Q_PROPERTY(std::optional<QString> finding READ finding NOTIFY findingChanged)
    Q_PROPERTY(std::optional<QString> availableVersion READ availableVersion NOTIFY
                   availableVersionChanged)

public:
    explicit UpdaterManager(QObject *parent = nullptr);
    explicit UpdaterManager(std::unique_ptr<SystemUpdater> updater, QObject *parent = nullptr);

    /// Whether updates can ever come to this build; it never changes.
    bool isOffered() const { return m_updater->isOffered(); }

    bool automaticallyChecks() const { return m_automaticallyChecks; }

    /// Tells observers, then the updater.
    void setAutomaticallyChecks(bool on);

    /// False while a check runs, and where no updates can come, once that is known: `refresh` asks.
    bool canCheck() const { return m_canCheck; }

    QString currentVersion() const { return versionText(bundleVersion()); }

    /// What the last check found, as one sentence. Absent before the first one, and where the
    /// system's updater shows it itself.
    std::optional<QString> finding() const { return m_updater->finding(); }

    /// The newer version that is there to be installed, as far as is known. Absent where the
    /// system's updater shows it itself.
    std::optional<QString> availableVersion() const { return m_availableVersion; }

    void checkForUpdates();

    /// To be called when the settings are shown: looks anew whether updates can come at all.
    void refresh();

signals:
    void automaticallyChecksChanged(bool automaticallyChecks);
    void canCheckChanged(bool canCheck);
    void findingChanged();
    void availableVersionChanged();

private:
    const std::unique_ptr<SystemUpdater> m_updater;
    bool m_automaticallyChecks;
    bool m_canCheck;
    std::optional<QString> m_availableVersion;
};

} // namespace corvane
