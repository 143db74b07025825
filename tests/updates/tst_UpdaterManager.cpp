#include "support/ScriptedUpdater.h"
#include "updates/UpdaterManager.h"

#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

struct Scripted {
    ScriptedUpdater *updater = new ScriptedUpdater;
    UpdaterManager manager{std::unique_ptr<SystemUpdater>(updater)};
};

} // namespace

class TestUpdaterManager : public QObject {
    Q_OBJECT

private slots:
    void namesTheVersion_data();
    void namesTheVersion();
    void namesThisVersion();
    void startsWithTheStateOfTheUpdater();
    void emitsTheChangeBeforeTheUpdaterHasIt();
    void cannotCheckWhileACheckRuns();
    void passesTheFindingOn();
    void reportsEachNewerVersionOnce();
    void passesARefreshOn();
};

void TestUpdaterManager::namesTheVersion_data()
{
    QTest::addColumn<std::optional<QString>>("version");
    QTest::addColumn<std::optional<QString>>("build");
    QTest::addColumn<QString>("text");
    const std::optional<QString> absent;
    QTest::newRow("version and build")
        << std::optional(u"1.2.3"_s) << std::optional(u"45"_s) << u"1.2.3 (45)"_s;
    QTest::newRow("no version") << absent << std::optional(u"45"_s) << u"0.0.0 (45)"_s;
    QTest::newRow("no build") << std::optional(u"1.2.3"_s) << absent << u"1.2.3 (1)"_s;
    QTest::newRow("no keys at all") << absent << absent << u"0.0.0 (1)"_s;
    QTest::newRow("placeholders stay text")
        << std::optional(u"%2"_s) << std::optional(u"%1"_s) << u"%2 (%1)"_s;
}

void TestUpdaterManager::namesTheVersion()
{
    QFETCH(const std::optional<QString>, version);
    QFETCH(const std::optional<QString>, build);
    QTEST(versionText({.version = version, .build = build}), "text");
}

void TestUpdaterManager::namesThisVersion()
{
    const Scripted scripted;
    QCOMPARE(scripted.manager.currentVersion(), versionText(bundleVersion()));
}

void TestUpdaterManager::startsWithTheStateOfTheUpdater()
{
    const Scripted scripted;
    QVERIFY(scripted.manager.isOffered());
    QVERIFY(scripted.manager.automaticallyChecks());
    QVERIFY(scripted.manager.canCheck());
    QVERIFY(!scripted.manager.finding());
    QVERIFY(!scripted.manager.availableVersion());
}

void TestUpdaterManager::emitsTheChangeBeforeTheUpdaterHasIt()
{
    Scripted scripted;
    int announcements = 0;
    connect(&scripted.manager, &UpdaterManager::automaticallyChecksChanged, this, [&](bool on) {
        ++announcements;
        QVERIFY(!on);
        QVERIFY(!scripted.manager.automaticallyChecks());
        QVERIFY(scripted.updater->automatic);
    });
    scripted.manager.setAutomaticallyChecks(false);
    QCOMPARE(announcements, 1);
    QVERIFY(!scripted.updater->automatic);
}

void TestUpdaterManager::cannotCheckWhileACheckRuns()
{
    Scripted scripted;
    const QSignalSpy changes(&scripted.manager, &UpdaterManager::canCheckChanged);
    scripted.manager.checkForUpdates();
    QVERIFY(!scripted.manager.canCheck());
    scripted.updater->setChecking(true);
    scripted.updater->setChecking(false);
    QVERIFY(scripted.manager.canCheck());
    QCOMPARE(changes, (QList<QVariantList>{{false}, {true}}));
}

void TestUpdaterManager::passesTheFindingOn()
{
    Scripted scripted;
    const QSignalSpy changes(&scripted.manager, &UpdaterManager::findingChanged);
    scripted.updater->find(u"Corvane is up to date."_s);
    QCOMPARE(scripted.manager.finding(), u"Corvane is up to date."_s);
    QCOMPARE(changes.count(), 1);
}

void TestUpdaterManager::reportsEachNewerVersionOnce()
{
    Scripted scripted;
    QList<QString> reported;
    connect(&scripted.manager, &UpdaterManager::availableVersionChanged, this,
            [&] { reported.append(scripted.manager.availableVersion().value_or(u"none"_s)); });
    scripted.updater->find(u"Corvane is up to date."_s);
    scripted.updater->find(u"Corvane 0.2.0 is available."_s, u"0.2.0"_s);
    scripted.updater->find(u"The check failed."_s, u"0.2.0"_s);
    scripted.updater->find(u"Corvane 0.3.0 is available."_s, u"0.3.0"_s);
    scripted.updater->find(u"Corvane is up to date."_s);
    QCOMPARE(reported, (QList<QString>{u"0.2.0"_s, u"0.3.0"_s, u"none"_s}));
}

void TestUpdaterManager::passesARefreshOn()
{
    Scripted scripted;
    scripted.manager.refresh();
    QCOMPARE(scripted.updater->refreshes, 1);
}

QTEST_GUILESS_MAIN(TestUpdaterManager)
#include "tst_UpdaterManager.moc"
