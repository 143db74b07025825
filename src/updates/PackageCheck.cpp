#include "updates/PackageCheck.h"

#include "bus/SystemBusLink.h"
#include "platform/BackgroundJob.h"

#include <QTimer>

#include <limits>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr auto packageName = "corvane"_L1;

constexpr qulonglong noFilter = 0;
constexpr unsigned int roleRefreshCache = 13;
constexpr unsigned int errorPackageNotFound = 8;
constexpr unsigned int errorBadSignature = 30;

} // namespace

PackageCheck::PackageCheck(Lists lists, std::chrono::milliseconds patience)
    : m_lists(lists),
      m_patience(patience),
      m_knock(SystemBusLink::address())
{
    connect(&m_knock, &BusProbe::answered, this, &PackageCheck::link);
    connect(&m_knock, &BusProbe::refused, this,
            [this] { conclude(UpdateReport::Outcome::noService); });
    QTimer::singleShot(patience, this, [this] {
        if (!m_link)
            conclude(UpdateReport::Outcome::failed);
    });
}

PackageCheck::~PackageCheck() = default;

void PackageCheck::link()
{
    runThenDeliver(
        this, [] { return std::make_shared<SystemBusLink>(); },
        [this](std::shared_ptr<SystemBusLink> made) {
            m_link = std::move(made);
            findService();
        });
}

/// Starts nothing on a system that has no such service.
void PackageCheck::findService()
{
    if (!m_link->bus().isConnected()) {
        conclude(UpdateReport::Outcome::noService);
        return;
    }
    call(BusCall::toBus(u"ListActivatableNames"_s), [this](const QDBusMessage &reply) {
        const QStringList activatable = reply.arguments().value(0).toStringList();
        if (!activatable.contains("org.freedesktop.PackageKit"_L1))
            conclude(UpdateReport::Outcome::noService);
        else if (m_lists == Lists::refreshed)
            refreshLists();
        else
            askForAge();
    });
}

/// Not everybody may, and not everywhere is a network: then the lists count as they are.
void PackageCheck::refreshLists()
{
    transact(u"RefreshCache"_s, {false}, [this](const PackageAnswer &answer) {
        m_report.isCurrent = answer.isFinished;
        if (answer.isFinished)
            resolve();
        else if (answer.error == errorBadSignature)
            conclude(UpdateReport::Outcome::unverified);
        else
            askForAge();
    });
}

void PackageCheck::askForAge()
{
    QDBusMessage question = PackageTransaction::serviceCall(u"GetTimeSinceAction"_s);
    question << roleRefreshCache;
    call(question, [this](const QDBusMessage &reply) {
        bool isNumber = false;
        const unsigned int seconds = reply.arguments().value(0).toUInt(&isNumber);
        if (isNumber && seconds != std::numeric_limits<unsigned int>::max())
            m_report.listAge = seconds;
        resolve();
    });
}

void PackageCheck::resolve()
{
    const QStringList names{packageName};
    transact(u"Resolve"_s, {noFilter, names}, [this](const PackageAnswer &answer) {
        if (!answer.isFinished && answer.error != errorPackageNotFound)
            conclude(UpdateReport::Outcome::failed);
        else if (!installedVersion(answer.lines))
            conclude(UpdateReport::Outcome::notAPackage);
        else if (!hasOtherVersion(answer.lines))
            conclude(UpdateReport::Outcome::upToDate);
        else
            askForUpdates(answer.lines);
    });
}

void PackageCheck::askForUpdates(const QList<PackageLine> &resolved)
{
    transact(u"GetUpdates"_s, {noFilter}, [this, resolved](const PackageAnswer &answer) {
        const auto version = updateVersion(resolved, answer.lines);
        m_report.version = version.value_or(QString());
        if (!answer.isFinished)
            conclude(UpdateReport::Outcome::failed);
        else
            conclude(version ? UpdateReport::Outcome::available : UpdateReport::Outcome::upToDate);
    });
}

void PackageCheck::conclude(UpdateReport::Outcome outcome)
{
    if (std::exchange(m_isOver, true))
        return;
    m_report.outcome = outcome;
    emit finished(m_report);
}

void PackageCheck::call(const QDBusMessage &message, const BusCall::Use &use)
{
    BusCall::ask(m_link->bus(), message, this, use, m_patience);
}

void PackageCheck::transact(const QString &action, const QVariantList &arguments, const Use &use)
{
    auto transaction = std::make_unique<PackageTransaction>(m_link->bus(), action, arguments,
                                                            packageName, m_patience);
    // Queued: the transaction that answers is replaced by the next one.
    connect(
        transaction.get(), &PackageTransaction::finished, this,
        [use](const PackageAnswer &answer) { use(answer); }, Qt::QueuedConnection);
    m_transaction = std::move(transaction);
}

} // namespace corvane
