#pragma once

#include "platform/BootClock.h"
#include "records/ReferenceDate.h"
#include "updates/PackageCheck.h"
#include "updates/SystemUpdater.h"

#include <QSettings>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

namespace corvane {

/// What stands around the updater; a test brings its own.
struct PackageUpdaterSources {
    QString program; ///< This program's file.
    std::function<double()> now = secondsSince2001;
    std::function<double()> sinceBoot = secondsSinceBoot;
    std::chrono::milliseconds patience =
        std::chrono::minutes(1); ///< With a service that is silent.
};

/// Updates through the packages of the system: looks for them when told and, if the user wants it,
/// once a day. Main thread. It has no timer and no connection unless automatic checks are on or a
/// check runs. A program outside the folders of packages (one that was built by hand, say, even
/// beside an installed package) never asks: an update of the package would not be one of it. What
/// the user chose for the package it leaves alone.
class PackageUpdater : public SystemUpdater {
    Q_OBJECT

public:
    explicit PackageUpdater(PackageUpdaterSources sources);

    bool isOffered() const override { return m_isInPackageFolder; }
    bool automaticallyChecks() const override { return m_automaticallyChecks; }
    void setAutomaticallyChecks(bool on) override;
    bool canCheck() const override { return m_isPossible && !isChecking(); }
    void check() override;

    /// Asks the service by what it knows, without bringing the lists up to date.
    void refresh() override;

    std::optional<QString> finding() const override;
    std::optional<QString> availableVersion() const override { return m_availableVersion; }

    /// Starts the daily check if its time has come; called now and then by a timer.
    void tick();

private:
    bool isChecking() const;
    void planNextCheck();
    void start(PackageCheck::Lists lists);
    void take(const UpdateReport &report);
    void takeLook(const UpdateReport &look);

    const PackageUpdaterSources m_sources;
    const bool m_isInPackageFolder;
    QSettings m_store;
    bool m_automaticallyChecks;
    bool m_isPossible; ///< As far as is known; the first look tells.
    QTimer m_timer;
    double m_nextCheck = 0; ///< In seconds since boot, so that no jump of the clock matters.
    std::unique_ptr<PackageCheck> m_check; ///< The one that runs.
    std::optional<UpdateReport> m_report;  ///< Of the last one that is worth telling.
    std::optional<QString> m_availableVersion;
};

} // namespace corvane
