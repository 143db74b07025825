#include "simulated_mac/recorded/Messages.h"
#include "simulated_mac/recorded/Updater.h"
#include "updates/BundleVersion.h"
#include "updates/SystemUpdater.h"

#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::simulated;
using namespace Qt::StringLiterals;

using Messages = std::vector<std::string>;

class TestSystemUpdaterOnMac : public QObject {
    Q_OBJECT

private slots:
    void init();
    void startsTheUpdater();
    void reportsWhetherACheckIsPossible();
    void reportsNothingAfterItsEnd();
    void canBeDeletedByItsSignal();
    void keepsTheUsersChoice();
    void checks();
    void knowsTheVersionOfItsBundle_data();
    void knowsTheVersionOfItsBundle();
};

void TestSystemUpdaterOnMac::init()
{
    updater() = {};
    takeMessages();
}

void TestSystemUpdaterOnMac::startsTheUpdater()
{
    const auto system = makeSystemUpdater();
    QVERIFY((takeMessages()
             == Messages{"SPUStandardUpdaterController initWithStartingUpdater:YES "
                         "updaterDelegate:nil userDriverDelegate:nil"}));
    QVERIFY(system->isOffered());
}

/// The present value first, each of them from the main queue.
void TestSystemUpdaterOnMac::reportsWhetherACheckIsPossible()
{
    updater().canCheck = true;
    const auto system = makeSystemUpdater();
    QVERIFY(!system->canCheck());
    runMainQueue();
    QVERIFY(system->canCheck());
    const QSignalSpy changes(system.get(), &SystemUpdater::canCheckChanged);
    letUpdaterCheck(false);
    QVERIFY(system->canCheck());
    runMainQueue();
    QVERIFY(!system->canCheck());
    QCOMPARE(changes.count(), 1);
}

void TestSystemUpdaterOnMac::reportsNothingAfterItsEnd()
{
    {
        const auto system = makeSystemUpdater();
        letUpdaterCheck(true);
    }
    runMainQueue(); // The report was on its way.
    letUpdaterCheck(false);
    runMainQueue();
}

void TestSystemUpdaterOnMac::canBeDeletedByItsSignal()
{
    auto system = makeSystemUpdater();
    runMainQueue();
    connect(system.get(), &SystemUpdater::canCheckChanged, this, [&system] { system.reset(); });
    letUpdaterCheck(true);
    runMainQueue();
    QVERIFY(!system);
}

void TestSystemUpdaterOnMac::keepsTheUsersChoice()
{
    updater().automaticallyChecks = true;
    const auto system = makeSystemUpdater();
    takeMessages();
    QVERIFY(system->automaticallyChecks());
    system->setAutomaticallyChecks(false);
    QVERIFY(!system->automaticallyChecks());
    QVERIFY((takeMessages() == Messages{"SPUUpdater setAutomaticallyChecksForUpdates:NO"}));
}

void TestSystemUpdaterOnMac::checks()
{
    const auto system = makeSystemUpdater();
    takeMessages();
    system->check();
    QVERIFY((takeMessages() == Messages{"SPUStandardUpdaterController checkForUpdates:nil"}));
}

void TestSystemUpdaterOnMac::knowsTheVersionOfItsBundle_data()
{
    QTest::addColumn<bool>("hasVersion");
    QTest::addColumn<bool>("isText");
    QTest::newRow("a bundle with a version") << true << true;
    QTest::newRow("a version that is no text") << true << false;
    QTest::newRow("a bundle without a version") << false << false;
}

void TestSystemUpdaterOnMac::knowsTheVersionOfItsBundle()
{
    QFETCH(bool, hasVersion);
    QFETCH(bool, isText);
    clearBundle();
    if (hasVersion && isText)
        setBundleValue("CFBundleShortVersionString", "1.2.3");
    else if (hasVersion)
        setBundleNumber("CFBundleShortVersionString", 1.2);
    QCOMPARE(bundleVersion().version, isText ? std::optional(u"1.2.3"_s) : std::nullopt);
    QCOMPARE(bundleVersion().build, std::optional<QString>());
    clearBundle();
}

QTEST_GUILESS_MAIN(TestSystemUpdaterOnMac)
#include "tst_SystemUpdater_mac.moc"
