#pragma once

#include <QObject>
#include <QString>

#include <memory>
#include <optional>

namespace corvane {

/// What brings updates on this system. Owned by the UpdaterManager; main thread.
class SystemUpdater : public QObject {
    Q_OBJECT

public:
    /// Whether updates can ever come to this build. Where none can, `canCheck` stays false, nothing
    /// is checked automatically and no choice is kept. It never changes.
    virtual bool isOffered() const { return true; }

    /// The user's choice, which the updater keeps.
    virtual bool automaticallyChecks() const = 0;
    virtual void setAutomaticallyChecks(bool on) = 0;

    /// False while a check runs.
    virtual bool canCheck() const = 0;

    virtual void check() = 0;

    /// Looks anew whether updates can come at all, where that may change.
    virtual void refresh() { }

    /// What the last check found, as one sentence; absent where the updater has windows of its own.
    virtual std::optional<QString> finding() const { return std::nullopt; }

    /// The newer version that the last answer told of, a failed check aside; absent where there is
    /// none, and where the updater has windows of its own. Changes with the finding.
    virtual std::optional<QString> availableVersion() const { return std::nullopt; }

signals:
    void canCheckChanged();
    void findingChanged();
};

/// This system's.
std::unique_ptr<SystemUpdater> makeSystemUpdater();

} // namespace corvane
