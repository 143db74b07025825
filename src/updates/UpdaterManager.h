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

    /// Whether this build can ever get updates; constant.
    bool isOffered() const { return m_updater->isOffered(); }

    bool automaticallyChecks() const { return m_automaticallyChecks; }

    /// Emits the change, then passes it to the updater.
    void setAutomaticallyChecks(bool on);

    /// False while a check runs, and once `refresh` has found that no updates can come.
    bool canCheck() const { return m_canCheck; }

    QString currentVersion() const { return versionText(bundleVersion()); }

    /// Result of the last check as one sentence. Absent before the first one, and if the system's
    /// updater has its own windows.
    std::optional<QString> finding() const { return m_updater->finding(); }

    /// The newer version that can be installed. Absent if none is known, and if the system's
    /// updater has its own windows.
    std::optional<QString> availableVersion() const { return m_availableVersion; }

    void checkForUpdates();

    /// Finds out again whether updates can come at all. Called when the settings are shown.
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
