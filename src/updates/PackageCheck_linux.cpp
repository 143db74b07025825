#include "updates/PackageCheck_linux.h"

#include "bus/BusOpening.h"
#include "bus/SystemBus.h"
#include "threads/BackgroundJob.h"
#include "threads/MainThread.h"

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

PackageCheck::PackageCheck(Lists lists, const PackageCheckTimes &times)
    : m_lists(lists),
      m_times(times),
      m_probe(systemBusAddress())
{
    assertMainThread();
    connect(&m_probe, &BusProbe::answered, this, &PackageCheck::openConnection);
    connect(&m_probe, &BusProbe::refused, this,
            [this] { finish(UpdateReport::Outcome::noService); });
    QTimer::singleShot(times.silence, this, [this] {
        if (!m_bus)
            finish(UpdateReport::Outcome::failed);
    });
    QTimer::singleShot(times.whole, this, [this] {
        m_transaction.reset(); // Cancels it.
        finish(UpdateReport::Outcome::failed);
    });
}

PackageCheck::~PackageCheck() = default;

void PackageCheck::openConnection()
{
    runThenDeliver(
        this, [] { return openBus(systemBusAddress()); },
        [this](const QDBusConnection &bus) {
            m_bus = bus;
            findService();
        });
}

/// Asks the bus first: a call to a service that is not installed would still try to start it.
void PackageCheck::findService()
{
    if (!m_bus->isConnected()) {
        finish(UpdateReport::Outcome::noService);
        return;
    }
    call(BusCall::toBus(u"ListActivatableNames"_s), [this](const QDBusMessage &reply) {
        const QStringList activatable = reply.arguments().value(0).toStringList();
        if (!activatable.contains("org.freedesktop.PackageKit"_L1))
            finish(UpdateReport::Outcome::noService);
        else if (m_lists == Lists::refreshed)
            refreshLists();
        else
            readListAge();
    });
}

/// Without the permission or a network, the cached lists are used.
void PackageCheck::refreshLists()
{
    transact(u"RefreshCache"_s, {false}, [this](const PackageAnswer &answer) {
        m_report.isCurrent = answer.isFinished;
        if (answer.isFinished)
            resolve();
        else if (answer.error == errorBadSignature)
            finish(UpdateReport::Outcome::unverified);
        else
            readListAge();
    });
}

void PackageCheck::readListAge()
{
    QDBusMessage query = PackageTransaction::serviceCall(u"GetTimeSinceAction"_s);
    query << roleRefreshCache;
    call(query, [this](const QDBusMessage &reply) {
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
            finish(UpdateReport::Outcome::failed);
        else if (!installedVersion(answer.lines))
            finish(UpdateReport::Outcome::notAPackage);
        else if (!hasOtherVersion(answer.lines))
            finish(UpdateReport::Outcome::upToDate);
        else
            listUpdates(answer.lines);
    });
}

void PackageCheck::listUpdates(const QList<PackageLine> &resolved)
{
    transact(u"GetUpdates"_s, {noFilter}, [this, resolved](const PackageAnswer &answer) {
        const auto version = updateVersion(resolved, answer.lines);
        m_report.version = version.value_or(QString());
        if (!answer.isFinished)
            finish(UpdateReport::Outcome::failed);
        else
            finish(version ? UpdateReport::Outcome::available : UpdateReport::Outcome::upToDate);
    });
}

void PackageCheck::finish(UpdateReport::Outcome outcome)
{
    if (std::exchange(m_isFinished, true))
        return;
    m_report.outcome = outcome;
    emit finished(m_report);
}

void PackageCheck::call(const QDBusMessage &message, const BusCall::ReplyHandler &onReply)
{
    BusCall::send(*m_bus, message, this, onReply, m_times.silence);
}

void PackageCheck::transact(const QString &action, const QVariantList &arguments,
                            const AnswerHandler &onAnswer)
{
    auto transaction = std::make_unique<PackageTransaction>(*m_bus, action, arguments, packageName,
                                                            m_times.silence);
    // Queued: the handler replaces the transaction that emits the signal.
    connect(
        transaction.get(), &PackageTransaction::finished, this,
        [onAnswer](const PackageAnswer &answer) { onAnswer(answer); }, Qt::QueuedConnection);
    m_transaction = std::move(transaction);
}

} // namespace corvane
