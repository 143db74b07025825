#include "updates/PackageUpdater.h"

#include "updates/UpdateSchedule.h"

#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

constexpr auto automaticKey = "automaticallyChecksForUpdates"_L1;
constexpr auto lastCheckKey = "lastUpdateCheck"_L1;

/// The first look comes soon after the start, though not amid a login; the others find the day over
/// early enough.
constexpr auto firstTick = 2min;
constexpr auto tickInterval = 30min;

bool isInPackageFolder(const QString &program)
{
    return program.startsWith("/usr/"_L1) && !program.startsWith("/usr/local/"_L1);
}

std::optional<double> lastCheck(const QSettings &store)
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
    m_store.setFallbacksEnabled(false);
    // Compared as text, since anything at all would count as true.
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
        take({.outcome = UpdateReport::Outcome::notAPackage});
    else if (!m_check)
        start(PackageCheck::Lists::asTheyAre);
}

std::optional<QString> PackageUpdater::finding() const
{
    return m_report ? std::optional(updateFinding(*m_report)) : std::nullopt;
}

/// A look that finds no update tells nothing new, but may tell that an older finding no longer
/// holds: the update is installed by now, or what was in the way is gone.
void PackageUpdater::takeLook(const UpdateReport &look)
{
    using enum UpdateReport::Outcome;
    if (look.outcome != upToDate)
        m_report = look;
    else if (m_report && m_report->outcome != failed && m_report->outcome != unverified
             && m_report->outcome != upToDate)
        m_report.reset();
}

/// A look that runs gives way to a check.
void PackageUpdater::start(PackageCheck::Lists lists)
{
    m_check = std::make_unique<PackageCheck>(lists, m_sources.patience);
    connect(m_check.get(), &PackageCheck::finished, this, &PackageUpdater::take);
    if (lists == PackageCheck::Lists::asTheyAre)
        return;
    // The date is that of the attempt: one that fails is not repeated all day.
    m_store.setValue(lastCheckKey, m_sources.now());
    m_nextCheck = m_sources.sinceBoot() + updateCheckInterval;
    emit canCheckChanged();
}

void PackageUpdater::take(const UpdateReport &report)
{
    const bool wasLook = !isChecking();
    if (m_check)
        m_check.release()->deleteLater(); // It is the one that tells.

    using enum UpdateReport::Outcome;
    if (report.outcome != failed) {
        m_isPossible = report.outcome != noService && report.outcome != notAPackage;
        m_availableVersion =
            report.outcome == available ? std::optional(report.version) : std::nullopt;
    }
    if (!wasLook)
        m_report = report;
    else if (report.outcome != failed)
        takeLook(report);
    emit canCheckChanged();
    emit findingChanged();
}

} // namespace corvane
