#pragma once

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

namespace corvane {

/// This system's way to check for updates. Owned by the UpdaterManager; main thread.
class SystemUpdater : public QObject {
    Q_OBJECT

public:
    /// Whether this build can ever get updates; constant. If not, `canCheck` stays false, there are
    /// no automatic checks and no choice is stored.
    virtual bool isOffered() const { return true; }

    /// The user's choice, which the updater stores.
    virtual bool automaticallyChecks() const = 0;
    virtual void setAutomaticallyChecks(bool on) = 0;

    /// False while a check runs.
    virtual bool canCheck() const = 0;

    virtual void check() = 0;

    /// Finds out again whether updates can come at all, where that may change.
    virtual void refresh() { }

    /// Result of the last check as one sentence; absent if the updater has its own windows.
    virtual std::optional<QString> finding() const { return std::nullopt; }

    /// The newer version of the last check that did not fail; absent if there is none, or if the
    /// updater has its own windows. Changes with the finding.
    virtual std::optional<QString> availableVersion() const { return std::nullopt; }

signals:
    void canCheckChanged();
    void findingChanged();
};

/// This build's updater.
std::unique_ptr<SystemUpdater> makeSystemUpdater();

} // namespace corvane
