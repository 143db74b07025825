#pragma once

#include "platform/BootClock.h"
#include "platform/Preferences.h"
#include "records/ReferenceDate.h"
#include "updates/PackageCheck_linux.h"
#include "updates/SystemUpdater.h"

#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace corvane {

/// The updater's environment; a test passes its own.
struct PackageUpdaterSources {
    QString program; ///< This program's file.
    std::function<double()> now = secondsSince2001;
    std::function<double()> sinceBoot = secondsSinceBoot;
    std::chrono::milliseconds timeout = std::chrono::minutes(1); ///< For a service that is silent.
    std::chrono::milliseconds longestCheck = std::chrono::minutes(30); ///< For a whole check.
};

/// Updates through the system's packages: checks for them on request and, if the user wants it,
/// once a day. Main thread. It has a timer only while automatic checks are on, and a connection
/// only while a check runs. A program outside the folders of packages (built by hand, for example,
/// even beside an installed package) never checks, because an update of the package would not
/// update it; it leaves the stored choice of the packaged program alone.
class PackageUpdater : public SystemUpdater {
    Q_OBJECT

public:
    explicit PackageUpdater(PackageUpdaterSources sources);

    bool isOffered() const override { return m_isInPackageFolder; }
    bool automaticallyChecks() const override { return m_automaticallyChecks; }
    void setAutomaticallyChecks(bool on) override;
    bool canCheck() const override { return m_isPossible && !isChecking(); }
    void check() override;

    /// Checks with the package lists that the service has, without refreshing them.
    void refresh() override;

    std::optional<QString> finding() const override;
    std::optional<QString> availableVersion() const override { return m_availableVersion; }

    /// Starts the daily check if it is due; called by a timer.
    void tick();

private:
    bool isChecking() const;
    void planNextCheck();
    void start(PackageCheck::Lists lists);
    void receive(const UpdateReport &report);
    void receiveCached(const UpdateReport &report);

    const PackageUpdaterSources m_sources;
    const bool m_isInPackageFolder;
    Preferences m_store;
    bool m_automaticallyChecks;
    bool m_isPossible; ///< Whether updates can come; assumed until the first report.
    QTimer m_timer;
    double m_nextCheck = 0; ///< Seconds since boot, which no jump of the clock changes.
    std::unique_ptr<PackageCheck> m_check; ///< The running one; null if none runs.
    std::optional<UpdateReport> m_report;  ///< The one to show; absent if there is none.
    std::optional<QString> m_availableVersion;
};

} // namespace corvane
