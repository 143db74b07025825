#include "updates/PackageUpdater_linux.h"

#include "platform/UnixSocket.h"
#include "support/BusMonitor.h"
#include "support/FakePackageKit.h"
#include "support/HalfBus.h"
#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QCoreApplication>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Fake = FakePackageKit;
using Signals = Fake::Signals;

constexpr double day = 86'400;
constexpr auto longTimeout = 60s;

const auto oldPackage = Fake::package(1, u"corvane;0.1.0;all;manual:local"_s);
const auto newPackage = Fake::package(2, u"corvane;0.2.0;all;probe-stable-"_s);
const auto newUpdate = Fake::package(0x00050005, u"corvane;0.2.0;all;probe-stable-"_s);

const QString upToDate = u"Corvane is up to date."_s;
const QString upToDateOld = u"Corvane is up to date according to package lists 2 hours old."_s;
const QString updateFound = u"Corvane 0.2.0 is available; the system's updater installs it."_s;
const QString updateFoundOld =
    u"Corvane 0.2.0 is available according to package lists 2 hours old; the system's updater installs it."_s;
const QString notAPackage =
    u"This Corvane was not installed as a package, so the system has no updates for it."_s;
const QString noService = u"This system has no PackageKit service, which could tell of updates."_s;
const QString noAnswer = u"The check failed: the system's package service gave no usable answer."_s;
const QString wrongSignature =
    u"The signature of the package lists is wrong, so no update is offered."_s;

/// Answers of a service that has an update.
QHash<QString, Signals> answersWithAnUpdate()
{
    return {
        {u"RefreshCache"_s, {{u"RepoDetail"_s, {u"x"_s, u"y"_s, true}}, Fake::finished()}},
        {u"Resolve"_s, {oldPackage, newPackage, Fake::finished()}},
        {u"GetUpdates"_s, {newUpdate, Fake::finished()}},
    };
}

/// Another client of the bus.
struct OtherClient {
    explicit OtherClient(const QString &address) : bus(QDBusConnection::connectToBus(address, name))
    {
    }
    ~OtherClient() { QDBusConnection::disconnectFromBus(name); }
    OtherClient(const OtherClient &) = delete;
    OtherClient &operator=(const OtherClient &) = delete;

    /// Waits for the reply of the bus itself, which has then handled everything sent before.
    QVariant ask(const QString &method) const
    {
        return bus
            .call(QDBusMessage::createMethodCall(u"org.freedesktop.DBus"_s, u"/"_s,
                                                 u"org.freedesktop.DBus"_s, method))
            .arguments()
            .value(0);
    }

    const QString name = u"other"_s;
    QDBusConnection bus;
};

} // namespace

/// The updater and a fake PackageKit on a private bus. The test steps the clocks.
class TestPackageUpdater : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void reportsTheServicesAnswer_data();
    void reportsTheServicesAnswer();
    void refreshesBeforeItAsks();
    void sendsItsHints();
    void ignoresSignalsOfOthers();
    void cancelsASilentTransaction();
    void cancelsWhenItIsDeleted();
    void endsAServiceThatNeverEnds();
    void survivesTheEndOfTheService_data();
    void survivesTheEndOfTheService();
    void doesNotStartAMissingService();
    void failsWithAServiceThatCannotStart();
    void hasNoServiceWithoutABus();
    void failsWithABusThatHangs_data();
    void failsWithABusThatHangs();

    void cannotCheckWhileACheckRuns();
    void cannotCheckWhatIsNoPackage();
    void canCheckAgainOnceItIsAPackage();
    void buildByHandNeverUsesTheBus();
    void usesTheBusOnlyDuringACheck();

    void namesANewerVersionWhileItIsAvailable_data();
    void namesANewerVersionWhileItIsAvailable();
    void namesNoVersionOfUnverifiedLists();

    void refreshChecksWithCachedLists();
    void refreshWithdrawsAnInstalledUpdate();
    void refreshKeepsTheFindingOfACheck();
    void checkReplacesARefresh();

    void checksOnceADay();
    void remembersTheDayOfTheCheck();
    void ignoresJumpsOfTheClock();
    void invalidDateCountsAsNone_data();
    void invalidDateCountsAsNone();
    void storesTheChoice();
    void buildByHandKeepsThePackagesChoice();

private:
    std::unique_ptr<PackageUpdater> updater(const QString &program = u"/usr/bin/corvane"_s,
                                            std::chrono::milliseconds timeout = longTimeout)
    {
        return std::make_unique<PackageUpdater>(
            PackageUpdaterSources{.program = program,
                                  .now = [this] { return m_now; },
                                  .sinceBoot = [this] { return m_sinceBoot; },
                                  .timeout = timeout});
    }
    void pass(double seconds)
    {
        m_now += seconds;
        m_sinceBoot += seconds;
    }
    void startBus(bool hasService);
    qsizetype namesOnTheBus() const
    {
        return OtherClient(m_bus.address()).ask(u"ListNames"_s).toStringList().size();
    }
    bool waitForEnd(PackageUpdater &updater);
    bool completes(PackageUpdater &updater, void (PackageUpdater::*start)());
    bool waitForCall(const QString &call) const;
    qsizetype checks() const { return m_fake->calls().filter(u"RefreshCache"_s).size(); }

    double m_now = 800'000'000;
    double m_sinceBoot = 1000;
    QTemporaryDir m_folder;
    PrivateBus m_bus; ///< Always at one address: the bus library reads the system bus's only once.
    std::unique_ptr<FakePackageKit> m_fake;
};

void TestPackageUpdater::initTestCase()
{
    QCoreApplication::setOrganizationName(u"Corvane"_s);
    QCoreApplication::setApplicationName(u"tst_PackageUpdater"_s);
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address().toUtf8());
    qputenv("XDG_DATA_HOME", QFile::encodeName(m_folder.path()));
}

void TestPackageUpdater::init()
{
    QSettings().clear();
    startBus(true);
    m_fake = std::make_unique<FakePackageKit>(m_bus.address());
    m_fake->answers = answersWithAnUpdate();
    m_fake->secondsSinceRefresh = 7200U;
}

void TestPackageUpdater::cleanup()
{
    m_fake.reset();
    m_bus.kill();
    QSettings().clear();
}

/// Starts a bus that knows a service file, whose program fails, or none.
void TestPackageUpdater::startBus(bool hasService)
{
    const QString services = m_folder.filePath(u"dbus-1/services"_s);
    QVERIFY(QDir().mkpath(services));
    QFile file(services + u"/org.freedesktop.PackageKit.service"_s);
    if (hasService) {
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("[D-BUS Service]\nName=org.freedesktop.PackageKit\nExec=/bin/false\n");
        file.close();
    } else {
        file.remove();
    }
    QVERIFY(m_bus.start());
}

bool TestPackageUpdater::waitForEnd(PackageUpdater &updater)
{
    QSignalSpy changes(&updater, &SystemUpdater::findingChanged);
    return changes.wait(30'000);
}

bool TestPackageUpdater::completes(PackageUpdater &updater, void (PackageUpdater::*start)())
{
    (updater.*start)();
    return waitForEnd(updater);
}

bool TestPackageUpdater::waitForCall(const QString &call) const
{
    return QTest::qWaitFor([&] { return !m_fake->calls().filter(call).isEmpty(); }, 30'000);
}

void TestPackageUpdater::reportsTheServicesAnswer_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<Signals>("answer");
    QTest::addColumn<QString>("finding");
    const QString refresh = u"RefreshCache"_s;
    const QString resolve = u"Resolve"_s;
    const QString updates = u"GetUpdates"_s;
    const auto finished = Fake::finished();
    const auto failed = Fake::finished(2);

    QTest::newRow("an update") << QString() << Signals() << updateFound;
    QTest::newRow("may not refresh")
        << refresh << Signals{Fake::error(48), failed} << updateFoundOld;
    QTest::newRow("refresh fails without a reason") << refresh << Signals{failed} << updateFoundOld;
    QTest::newRow("an error, then success all the same")
        << refresh << Signals{Fake::error(64), finished} << updateFoundOld;
    QTest::newRow("wrong signature")
        << refresh << Signals{Fake::error(30), failed} << wrongSignature;
    QTest::newRow("newest version is installed")
        << resolve
        << Signals{oldPackage, Fake::package(2, u"corvane;0.1.0;all;probe-stable-"_s), finished}
        << upToDate;
    QTest::newRow("all packages in one signal")
        << resolve << Signals{Fake::packages({oldPackage, newPackage}), finished} << updateFound;
    QTest::newRow("no packages in one signal")
        << resolve << Signals{Fake::packages({}), finished} << notAPackage;
    QTest::newRow("not installed") << resolve << Signals{newPackage, finished} << notAPackage;
    QTest::newRow("an unknown name is an error")
        << resolve << Signals{Fake::error(8), failed} << notAPackage;
    QTest::newRow("another package is installed")
        << resolve << Signals{Fake::package(1, u"corvane-doc;0.1.0;all;x"_s), newPackage, finished}
        << notAPackage;
    QTest::newRow("resolving fails") << resolve << Signals{Fake::error(4), failed} << noAnswer;
    QTest::newRow("resolving is cancelled")
        << resolve << Signals{oldPackage, Fake::finished(3)} << noAnswer;
    QTest::newRow("signals with other arguments")
        << resolve
        << Signals{{u"Package"_s, {u"corvane;0.1.0;all;x"_s}},
                   {u"Packages"_s, {7U}},
                   {u"ErrorCode"_s, {}},
                   {u"Finished"_s, {u"1"_s}},
                   oldPackage,
                   finished}
        << upToDate;
    QTest::newRow("signals after the end")
        << resolve << Signals{oldPackage, finished, newPackage, failed} << upToDate;
    QTest::newRow("updates of others") << updates
                                       << Signals{Fake::package(5, u"a;1;all;x"_s), newUpdate,
                                                  Fake::package(8, u"b;1;all;x"_s), finished}
                                       << updateFound;
    QTest::newRow("no updates") << updates << Signals{finished} << upToDate;
    QTest::newRow("listing updates fails") << updates << Signals{newUpdate, failed} << noAnswer;
}

void TestPackageUpdater::reportsTheServicesAnswer()
{
    QFETCH(const QString, action);
    QFETCH(const Signals, answer);
    m_fake->answers.insert(action, answer);
    const auto updates = updater();
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QTEST(updates->finding().value_or(QString()), "finding");
}

void TestPackageUpdater::refreshesBeforeItAsks()
{
    const auto updates = updater();
    QVERIFY(!updates->finding());
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QCOMPARE(m_fake->calls(),
             (QStringList{u"CreateTransaction"_s, u"1 SetHints"_s, u"1 RefreshCache"_s,
                          u"CreateTransaction"_s, u"2 SetHints"_s, u"2 Resolve"_s,
                          u"CreateTransaction"_s, u"3 SetHints"_s, u"3 GetUpdates"_s}));
    QCOMPARE(m_fake->arguments(u"RefreshCache"_s), QVariantList{false});
    QCOMPARE(m_fake->arguments(u"Resolve"_s), (QVariantList{0ULL, QStringList{u"corvane"_s}}));
    QCOMPARE(m_fake->arguments(u"GetUpdates"_s), QVariantList{0ULL});
}

void TestPackageUpdater::sendsItsHints()
{
    m_fake->refused = {u"SetHints"_s}; // Which changes nothing else.
    const auto updates = updater();
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QCOMPARE(updates->finding(), updateFound);
    const QStringList hints = m_fake->arguments(u"SetHints"_s).value(0).toStringList();
    for (const QString &hint : {u"interactive=false"_s, u"background=true"_s, u"cache-age=86400"_s})
        QVERIFY(hints.contains(hint));
}

void TestPackageUpdater::ignoresSignalsOfOthers()
{
    m_fake->answers.remove(u"Resolve"_s);
    const auto updates = updater();
    updates->check();
    QVERIFY(waitForCall(u"2 Resolve"_s));

    const OtherClient other(m_bus.address());
    for (const Fake::Signal &signal : {oldPackage, newPackage, Fake::finished()}) {
        QDBusMessage message = QDBusMessage::createSignal(
            u"/2_fake"_s, u"org.freedesktop.PackageKit.Transaction"_s, signal.name);
        message.setArguments(signal.arguments);
        QVERIFY(other.bus.send(message));
    }
    QVERIFY(other.ask(u"GetId"_s).isValid());
    m_fake->send({oldPackage, Fake::finished()});
    QVERIFY(waitForEnd(*updates));
    QCOMPARE(updates->finding(), upToDate);
}

void TestPackageUpdater::cancelsASilentTransaction()
{
    m_fake->answers.remove(u"Resolve"_s);
    const auto updates = updater(u"/usr/bin/corvane"_s, 1s);
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QCOMPARE(updates->finding(), noAnswer);
    QVERIFY(waitForCall(u"2 Cancel"_s));
    QVERIFY(updates->canCheck());
}

void TestPackageUpdater::cancelsWhenItIsDeleted()
{
    m_fake->answers.remove(u"RefreshCache"_s);
    auto updates = updater();
    updates->check();
    QVERIFY(waitForCall(u"1 RefreshCache"_s));
    updates.reset();
    QVERIFY(waitForCall(u"1 Cancel"_s));
}

/// It reports progress all the time, so that it is never silent.
void TestPackageUpdater::endsAServiceThatNeverEnds()
{
    m_fake->answers.remove(u"RefreshCache"_s);
    PackageUpdater updates({.program = u"/usr/bin/corvane"_s,
                            .now = [this] { return m_now; },
                            .timeout = longTimeout,
                            .longestCheck = 300ms});
    QTimer progress;
    connect(&progress, &QTimer::timeout, this, [this] {
        m_fake->send({{.name = u"ItemProgress"_s, .arguments = {u"corvane"_s, 9U, 42U}}});
    });
    updates.check();
    QVERIFY(waitForCall(u"1 RefreshCache"_s));
    progress.start(20ms);
    QVERIFY(waitForEnd(updates));
    QCOMPARE(updates.finding(), noAnswer);
    QVERIFY(waitForCall(u"1 Cancel"_s));
    QVERIFY(updates.canCheck());
}

void TestPackageUpdater::survivesTheEndOfTheService_data()
{
    QTest::addColumn<QString>("method");
    QTest::newRow("before there is a transaction") << u"CreateTransaction"_s;
    QTest::newRow("while it refreshes") << u"RefreshCache"_s;
    QTest::newRow("while it resolves") << u"Resolve"_s;
    QTest::newRow("while it lists updates") << u"GetUpdates"_s;
}

void TestPackageUpdater::survivesTheEndOfTheService()
{
    QFETCH(const QString, method);
    m_fake->hanging = {method};
    const auto updates = updater();
    updates->check();
    QVERIFY(waitForCall(method));
    m_fake->vanish();
    QVERIFY(waitForEnd(*updates));
    QCOMPARE(updates->finding(), noAnswer);
    QVERIFY(updates->canCheck());
}

void TestPackageUpdater::doesNotStartAMissingService()
{
    m_fake.reset();
    m_bus.kill();
    startBus(false);
    BusMonitor monitor(m_bus.address());
    const auto updates = updater();
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QCOMPARE(updates->finding(), noService);
    QVERIFY(!updates->canCheck());
    const OtherClient other(m_bus.address());
    const QStringList members = monitor.membersSince({other.name});
    QVERIFY(members.contains(u"ListActivatableNames"_s));
    QVERIFY(!members.contains(u"CreateTransaction"_s));
}

void TestPackageUpdater::failsWithAServiceThatCannotStart()
{
    m_fake.reset();
    const auto updates = updater();
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QCOMPARE(updates->finding(), noAnswer);
}

void TestPackageUpdater::hasNoServiceWithoutABus()
{
    m_fake.reset();
    m_bus.kill();
    const auto updates = updater();
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QCOMPARE(updates->finding(), noService);
    QVERIFY(!updates->canCheck());
}

void TestPackageUpdater::failsWithABusThatHangs_data()
{
    QTest::addColumn<bool>("authenticates");
    QTest::newRow("from the first byte") << false;
    QTest::newRow("after the authentication") << true;
}

void TestPackageUpdater::failsWithABusThatHangs()
{
    QFETCH(const bool, authenticates);
    m_fake.reset();
    m_bus.kill();
    const QString path = m_bus.address().section(u'=', 1);
    FileDescriptor silent;
    std::optional<HalfBus> half;
    if (authenticates) {
        half.emplace(HalfBus::Transport::unixSocket, path.toStdString());
    } else {
        silent = openUnixSocket();
        QVERIFY(listenAt(silent, path.toStdString()));
    }
    const auto updates = updater(u"/usr/bin/corvane"_s, 100ms);
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QCOMPARE(updates->finding(), noAnswer);
    QVERIFY(QFile::remove(path));
    // The bus library opens one connection at a time, so one that hangs would block all others.
    PrivateBus anotherBus;
    QVERIFY(anotherBus.start());
    QVERIFY(OtherClient(anotherBus.address()).bus.isConnected());
}

void TestPackageUpdater::cannotCheckWhileACheckRuns()
{
    m_fake->answers.remove(u"RefreshCache"_s);
    const auto updates = updater();
    QVERIFY(updates->canCheck());
    const QSignalSpy changes(updates.get(), &SystemUpdater::canCheckChanged);
    updates->check();
    QVERIFY(!updates->canCheck());
    QCOMPARE(changes.count(), 1);
    updates->check();
    updates->refresh();
    QVERIFY(waitForCall(u"1 RefreshCache"_s));
    m_fake->send({Fake::finished()});
    QVERIFY(waitForEnd(*updates));
    QVERIFY(updates->canCheck());
    QCOMPARE(changes.count(), 2);
    QCOMPARE(checks(), 1);
}

void TestPackageUpdater::cannotCheckWhatIsNoPackage()
{
    m_fake->answers.insert(u"Resolve"_s, {newPackage, Fake::finished()});
    const auto updates = updater();
    QVERIFY(completes(*updates, &PackageUpdater::refresh));
    QVERIFY(!updates->canCheck());
    QCOMPARE(updates->finding(), notAPackage);
    const QSignalSpy changes(updates.get(), &SystemUpdater::canCheckChanged);
    updates->check();
    QCOMPARE(changes.count(), 0);
}

void TestPackageUpdater::canCheckAgainOnceItIsAPackage()
{
    m_fake->answers.insert(u"Resolve"_s, {Fake::finished()});
    const auto updates = updater();
    QVERIFY(completes(*updates, &PackageUpdater::refresh));
    m_fake->answers.insert(u"Resolve"_s, {oldPackage, Fake::finished()});
    QVERIFY(completes(*updates, &PackageUpdater::refresh));
    QVERIFY(updates->canCheck());
    QVERIFY(!updates->finding());
}

void TestPackageUpdater::buildByHandNeverUsesTheBus()
{
    BusMonitor monitor(m_bus.address());
    for (const QString &program :
         {u"/home/me/corvane/build/app/corvane"_s, u"/usr/local/bin/corvane"_s, QString()}) {
        const auto updates = updater(program);
        const QSignalSpy changes(updates.get(), &SystemUpdater::canCheckChanged);
        QVERIFY(!updates->isOffered());
        QVERIFY(!updates->canCheck());
        updates->setAutomaticallyChecks(true);
        QVERIFY(!updates->automaticallyChecks());
        pass(2 * day);
        updates->tick();
        updates->check();
        QCOMPARE(changes.count(), 0);
        updates->refresh();
        QCOMPARE(updates->finding(), notAPackage);
        QVERIFY(!updates->canCheck());
    }
    QVERIFY(!monitor.membersSince({u"fake-packagekit"_s}).contains(u"Hello"_s));
    QCOMPARE(m_fake->calls(), QStringList());
}

void TestPackageUpdater::usesTheBusOnlyDuringACheck()
{
    BusMonitor monitor(m_bus.address());
    const auto updates = updater();
    QVERIFY(!updates->automaticallyChecks());
    QVERIFY(updates->canCheck());
    pass(2 * day);
    updates->tick();
    QVERIFY(updates->canCheck());
    QVERIFY(!monitor.membersSince({u"fake-packagekit"_s}).contains(u"Hello"_s));

    // No connection is left after a check.
    const qsizetype before = namesOnTheBus();
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QTRY_COMPARE_WITH_TIMEOUT(namesOnTheBus(), before, 30'000);
}

void TestPackageUpdater::namesANewerVersionWhileItIsAvailable_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<Signals>("answer");
    QTest::addColumn<std::optional<QString>>("version");
    const std::optional<QString> none;
    const std::optional<QString> found = u"0.2.0"_s;
    const auto newerUpdate = Fake::package(5, u"corvane;0.3.0;all;x"_s);
    QTest::newRow("it is still available") << QString() << Signals() << found;
    QTest::newRow("the check fails")
        << u"Resolve"_s << Signals{Fake::error(4), Fake::finished(2)} << found;
    QTest::newRow("an even newer one")
        << u"GetUpdates"_s << Signals{newerUpdate, Fake::finished()} << std::optional(u"0.3.0"_s);
    QTest::newRow("it is installed")
        << u"Resolve"_s
        << Signals{Fake::package(1, u"corvane;0.2.0;all;installed:x"_s), Fake::finished()} << none;
    QTest::newRow("it was withdrawn") << u"GetUpdates"_s << Signals{Fake::finished()} << none;
    QTest::newRow("the package was removed") << u"Resolve"_s << Signals{Fake::finished()} << none;
}

/// By a check and by a refresh alike.
void TestPackageUpdater::namesANewerVersionWhileItIsAvailable()
{
    QFETCH(const QString, action);
    QFETCH(const Signals, answer);
    for (const auto start : {&PackageUpdater::check, &PackageUpdater::refresh}) {
        m_fake->answers = answersWithAnUpdate();
        const auto updates = updater();
        QVERIFY(!updates->availableVersion());
        QVERIFY(completes(*updates, &PackageUpdater::check));
        QCOMPARE(updates->availableVersion(), u"0.2.0"_s);

        m_fake->answers.insert(
            u"Resolve"_s,
            {oldPackage, newPackage, Fake::package(2, u"corvane;0.3.0;all;x"_s), Fake::finished()});
        m_fake->answers.insert(action, answer);
        QVERIFY(completes(*updates, start));
        QTEST(updates->availableVersion(), "version");
    }
}

void TestPackageUpdater::namesNoVersionOfUnverifiedLists()
{
    const auto updates = updater();
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QVERIFY(updates->availableVersion());
    m_fake->answers.insert(u"RefreshCache"_s, {Fake::error(30), Fake::finished(2)});
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QVERIFY(!updates->availableVersion());
}

void TestPackageUpdater::refreshChecksWithCachedLists()
{
    const auto updates = updater();
    updates->refresh();
    QVERIFY(updates->canCheck()); // A refresh does not prevent a check.
    QVERIFY(waitForEnd(*updates));
    QCOMPARE(updates->finding(), updateFoundOld);
    QCOMPARE(checks(), 0);
}

void TestPackageUpdater::refreshWithdrawsAnInstalledUpdate()
{
    const auto updates = updater();
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QCOMPARE(updates->finding(), updateFound);
    m_fake->answers.insert(
        u"Resolve"_s, {Fake::package(1, u"corvane;0.2.0;all;installed:x"_s), Fake::finished()});
    QVERIFY(completes(*updates, &PackageUpdater::refresh));
    QVERIFY(!updates->finding());
}

void TestPackageUpdater::refreshKeepsTheFindingOfACheck()
{
    m_fake->answers.insert(u"Resolve"_s, {oldPackage, Fake::finished()});
    const auto updates = updater();
    QVERIFY(completes(*updates, &PackageUpdater::check));
    QCOMPARE(updates->finding(), upToDate);
    QVERIFY(completes(*updates, &PackageUpdater::refresh));
    QCOMPARE(updates->finding(), upToDate);

    m_fake->refused = {u"Resolve"_s};
    QVERIFY(completes(*updates, &PackageUpdater::refresh));
    QCOMPARE(updates->finding(), upToDate);
}

void TestPackageUpdater::checkReplacesARefresh()
{
    m_fake->hanging = {u"GetTimeSinceAction"_s};
    const auto updates = updater();
    updates->refresh();
    QVERIFY(waitForCall(u"GetTimeSinceAction"_s));
    updates->check();
    QVERIFY(!updates->canCheck());
    QVERIFY(waitForEnd(*updates));
    QCOMPARE(updates->finding(), updateFound);
}

void TestPackageUpdater::checksOnceADay()
{
    const auto updates = updater();
    updates->setAutomaticallyChecks(true);
    QVERIFY(!updates->canCheck()); // There was no check yet, so one is due.
    QVERIFY(waitForEnd(*updates));
    QCOMPARE(checks(), 1);

    for (int halfHours = 1; halfHours < 48; ++halfHours) {
        pass(1800);
        updates->tick();
        QVERIFY(updates->canCheck());
    }
    pass(1800);
    updates->tick();
    QVERIFY(!updates->canCheck());
    QVERIFY(waitForEnd(*updates));
    QCOMPARE(checks(), 2);

    // A check on request counts as well.
    pass(day - 1);
    QVERIFY(completes(*updates, &PackageUpdater::check));
    pass(day - 1);
    updates->tick();
    QVERIFY(updates->canCheck());

    updates->setAutomaticallyChecks(false);
    pass(day);
    updates->tick();
    QVERIFY(updates->canCheck());
    QCOMPARE(checks(), 3);
}

void TestPackageUpdater::remembersTheDayOfTheCheck()
{
    auto updates = updater();
    updates->setAutomaticallyChecks(true);
    QVERIFY(waitForEnd(*updates));

    pass(day - 100);
    m_sinceBoot = 50; // After a restart of the machine.
    updates = updater();
    QVERIFY(updates->automaticallyChecks());
    updates->tick();
    QVERIFY(updates->canCheck());
    pass(100);
    updates->tick();
    QVERIFY(!updates->canCheck());
    QVERIFY(waitForEnd(*updates));
    QCOMPARE(checks(), 2);
}

void TestPackageUpdater::ignoresJumpsOfTheClock()
{
    const auto updates = updater();
    updates->setAutomaticallyChecks(true);
    QVERIFY(waitForEnd(*updates));
    for (const double jump : {10 * day, -20 * day, 3000 * day, -5000 * day}) {
        m_now += jump;
        updates->tick();
        QVERIFY(updates->canCheck());
        // Nor does switching it on again start a check.
        updates->setAutomaticallyChecks(true);
        QVERIFY(updates->canCheck());
    }
    m_sinceBoot += day;
    updates->tick();
    QVERIFY(!updates->canCheck());
    QVERIFY(waitForEnd(*updates));
    QCOMPARE(checks(), 2);
}

void TestPackageUpdater::invalidDateCountsAsNone_data()
{
    QTest::addColumn<QVariant>("date");
    QTest::newRow("text") << QVariant(u"yesterday"_s);
    QTest::newRow("a list") << QVariant(QStringList{u"1"_s, u"2"_s});
    QTest::newRow("in the future") << QVariant(9e8);
    QTest::newRow("not a number") << QVariant(u"nan"_s);
    QTest::newRow("infinite") << QVariant(u"inf"_s);
}

void TestPackageUpdater::invalidDateCountsAsNone()
{
    QFETCH(const QVariant, date);
    QSettings().setValue(u"lastUpdateCheck"_s, date);
    QSettings().setValue(u"automaticallyChecksForUpdates"_s, true);
    const auto updates = updater();
    updates->tick();
    QVERIFY(!updates->canCheck());
    QVERIFY(waitForEnd(*updates));
    TRY_COMPARE(QSettings().value(u"lastUpdateCheck"_s).toDouble(), m_now);
}

void TestPackageUpdater::storesTheChoice()
{
    QVERIFY(!updater()->automaticallyChecks());
    updater()->setAutomaticallyChecks(true);
    QVERIFY(updater()->automaticallyChecks());
    updater()->setAutomaticallyChecks(false);
    QVERIFY(!updater()->automaticallyChecks());
    QSettings().setValue(u"automaticallyChecksForUpdates"_s, u"perhaps"_s);
    QVERIFY(!updater()->automaticallyChecks());
}

void TestPackageUpdater::buildByHandKeepsThePackagesChoice()
{
    updater()->setAutomaticallyChecks(true);
    const auto build = updater(u"/usr/local/bin/corvane"_s);
    QVERIFY(!build->automaticallyChecks());
    build->setAutomaticallyChecks(false);
    QVERIFY(updater()->isOffered());
    QVERIFY(updater()->automaticallyChecks());
}

QTEST_GUILESS_MAIN(TestPackageUpdater)
#include "tst_PackageUpdater.moc"
