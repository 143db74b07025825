#include "login/LaunchAtLoginManager.h"
#include "support/ScriptedLoginItem.h"

#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestLaunchAtLoginManager : public QObject {
    Q_OBJECT

private slots:
    void startsWithTheStateOfTheSystem();
    void switchesOnAndOff();
    void springsBackWhenRefused();
    void staysOffUntilTheUserAgrees();
    void forgetsTheErrorWithTheNextSuccess();
    void readsTheStateAfterEachChange();
    void seesWhatOthersChanged();
};

void TestLaunchAtLoginManager::startsWithTheStateOfTheSystem()
{
    ScriptedLoginItem on{.isEnabled = true};
    ScriptedLoginItem off;
    QVERIFY(LaunchAtLoginManager(on.item()).isEnabled());
    QVERIFY(!LaunchAtLoginManager(off.item()).isEnabled());
    QVERIFY(!LaunchAtLoginManager(off.item()).lastError());
}

void TestLaunchAtLoginManager::switchesOnAndOff()
{
    ScriptedLoginItem system;
    LaunchAtLoginManager manager(system.item());
    manager.setEnabled(true);
    QVERIFY(system.isEnabled);
    QVERIFY(manager.isEnabled());
    manager.setEnabled(false);
    QVERIFY(!system.isEnabled);
    QVERIFY(!manager.isEnabled());
    QVERIFY(!manager.lastError());
}

void TestLaunchAtLoginManager::springsBackWhenRefused()
{
    ScriptedLoginItem system{.refusal = u"The disk is full."_s};
    LaunchAtLoginManager manager(system.item());
    const QSignalSpy states(&manager, &LaunchAtLoginManager::isEnabledChanged);
    const QSignalSpy errors(&manager, &LaunchAtLoginManager::lastErrorChanged);

    manager.setEnabled(true);
    QVERIFY(!manager.isEnabled());
    QCOMPARE(manager.lastError(), u"The disk is full."_s);
    // Though the state is the same, a switch that was moved has to hear of it.
    QCOMPARE(states, QList<QVariantList>{{false}});
    QCOMPARE(errors.count(), 1);
}

void TestLaunchAtLoginManager::staysOffUntilTheUserAgrees()
{
    ScriptedLoginItem system{.needsApproval = true};
    LaunchAtLoginManager manager(system.item());
    manager.setEnabled(true);
    QVERIFY(!manager.isEnabled());
    QVERIFY(!manager.lastError());
}

void TestLaunchAtLoginManager::forgetsTheErrorWithTheNextSuccess()
{
    ScriptedLoginItem system{.refusal = u"Not now."_s};
    LaunchAtLoginManager manager(system.item());
    manager.setEnabled(true);
    system.refusal.reset();
    const QSignalSpy errors(&manager, &LaunchAtLoginManager::lastErrorChanged);
    manager.setEnabled(true);
    QVERIFY(!manager.lastError());
    QCOMPARE(errors.count(), 1);
    manager.setEnabled(false);
    QCOMPARE(errors.count(), 1);
}

void TestLaunchAtLoginManager::readsTheStateAfterEachChange()
{
    ScriptedLoginItem system{.isEnabled = true, .refusal = u"No."_s};
    LaunchAtLoginManager manager(system.item());
    QCOMPARE(system.reads, 1);
    manager.setEnabled(false);
    QCOMPARE(system.reads, 2);
    QVERIFY(manager.isEnabled());
    system.refusal.reset();
    manager.setEnabled(false);
    QCOMPARE(system.reads, 3);
    QVERIFY(!manager.isEnabled());
}

void TestLaunchAtLoginManager::seesWhatOthersChanged()
{
    ScriptedLoginItem system;
    LaunchAtLoginManager manager(system.item());
    const QSignalSpy states(&manager, &LaunchAtLoginManager::isEnabledChanged);
    manager.refresh();
    QCOMPARE(states.count(), 0);
    system.isEnabled = true;
    manager.refresh();
    QVERIFY(manager.isEnabled());
    QCOMPARE(states, QList<QVariantList>{{true}});
}

QTEST_GUILESS_MAIN(TestLaunchAtLoginManager)
#include "tst_LaunchAtLoginManager.moc"
