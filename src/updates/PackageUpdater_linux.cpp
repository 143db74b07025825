#include "updates/PackageUpdater_linux.h"

#include "threads/MainThread.h"
#include "updates/UpdateSchedule.h"

#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto automaticKey = "automaticallyChecksForUpdates"_L1;
constexpr auto lastCheckKey = "lastUpdateCheck"_L1;

/// The first tick is soon after the start, but not during a login. The interval bounds how late a
/// daily check can be.
constexpr auto firstTick = 2min;
constexpr auto tickInterval = 30min;

bool isInPackageFolder(const QString &program)
{
    return program.startsWith("/usr/"_L1) && !program.startsWith("/usr/local/"_L1);
}

std::optional<double> lastCheck(const Preferences &store)
{
    bool isNumber = false;
    const double date = store.value(lastCheckKey).toDouble(&isNumber);
    return isNumber ? std::optional(date) : std::nullopt;
}

} // namespace

PackageUpdater::PackageUpdater(PackageUpdaterSources sources)
    : m_sources(std::move(sources)),
      m_isInPackageFolder(isInPackageFolder(m_sources.program)),
      m_isPossible(m_isInPackageFolder)
{
    assertMainThread();
    // Compared as text: toBool() is true for nearly any text.
    m_automaticallyChecks =
        m_isInPackageFolder && m_store.value(automaticKey).toString() == "true"_L1;
    m_timer.setTimerType(Qt::VeryCoarseTimer);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        m_timer.setInterval(tickInterval);
        tick();
    });
    planNextCheck();
}

void PackageUpdater::setAutomaticallyChecks(bool on)
{
    if (!m_isInPackageFolder)
        return;
    m_store.setValue(automaticKey, on);
    if (on == m_automaticallyChecks)
        return;
    m_automaticallyChecks = on;
    planNextCheck();
    tick();
}

void PackageUpdater::planNextCheck()
{
    if (!m_automaticallyChecks) {
        m_timer.stop();
        return;
    }
    m_nextCheck =
        m_sources.sinceBoot() + secondsUntilUpdateCheck(m_sources.now(), lastCheck(m_store));
    m_timer.start(firstTick);
}

void PackageUpdater::tick()
{
    if (m_timer.isActive() && !isChecking() && m_sources.sinceBoot() >= m_nextCheck)
        start(PackageCheck::Lists::refreshed);
}

bool PackageUpdater::isChecking() const
{
    return m_check && m_check->lists() == PackageCheck::Lists::refreshed;
}

void PackageUpdater::check()
{
    if (canCheck())
        start(PackageCheck::Lists::refreshed);
}

void PackageUpdater::refresh()
{
    if (!m_isInPackageFolder)
        receive({.outcome = UpdateReport::Outcome::notAPackage});
    else if (!m_check)
        start(PackageCheck::Lists::cached);
}

std::optional<QString> PackageUpdater::finding() const
{
    return m_report ? std::optional(updateFinding(*m_report)) : std::nullopt;
}

/// A cached check without an update only withdraws a finding that no longer holds: the update is
/// installed by now, or the obstacle is gone.
void PackageUpdater::receiveCached(const UpdateReport &report)
{
    using enum UpdateReport::Outcome;
    if (report.outcome != upToDate)
        m_report = report;
    else if (m_report && m_report->outcome != failed && m_report->outcome != unverified
             && m_report->outcome != upToDate)
        m_report.reset();
}

/// Replaces a cached check that still runs.
void PackageUpdater::start(PackageCheck::Lists lists)
{
    m_check = std::make_unique<PackageCheck>(
        lists, PackageCheckTimes{.silence = m_sources.timeout, .whole = m_sources.longestCheck});
    connect(m_check.get(), &PackageCheck::finished, this, &PackageUpdater::receive);
    if (lists == PackageCheck::Lists::cached)
        return;
    // The date of the attempt: a failed check is not repeated until the next day.
    m_store.setValue(lastCheckKey, m_sources.now());
    m_nextCheck = m_sources.sinceBoot() + updateCheckInterval;
    emit canCheckChanged();
}

void PackageUpdater::receive(const UpdateReport &report)
{
    const bool wasCached = !isChecking();
    if (m_check)
        m_check.release()->deleteLater(); // It emitted the signal.

    using enum UpdateReport::Outcome;
    if (report.outcome != failed) {
        m_isPossible = report.outcome != noService && report.outcome != notAPackage;
        m_availableVersion =
            report.outcome == available ? std::optional(report.version) : std::nullopt;
    }
    if (!wasCached)
        m_report = report;
    else if (report.outcome != failed)
        receiveCached(report);
    emit canCheckChanged();
    emit findingChanged();
}

} // namespace corvane
