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
    void changesTheStateOfTheSystem();
    void staysAsItWasAfterAFailure();
    void staysDisabledUntilTheUserApproves();
    void clearsTheErrorAfterTheNextSuccess();
    void refreshFindsAChangeMadeElsewhere();
};

void TestLaunchAtLoginManager::startsWithTheStateOfTheSystem()
{
    ScriptedLoginItem on{.isEnabled = true};
    ScriptedLoginItem off;
    QVERIFY(LaunchAtLoginManager(on.item()).isEnabled());
    QVERIFY(!LaunchAtLoginManager(off.item()).isEnabled());
    QVERIFY(!LaunchAtLoginManager(off.item()).lastError());
}

void TestLaunchAtLoginManager::changesTheStateOfTheSystem()
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

void TestLaunchAtLoginManager::staysAsItWasAfterAFailure()
{
    ScriptedLoginItem system{.refusal = u"The disk is full."_s};
    LaunchAtLoginManager manager(system.item());
    const QSignalSpy states(&manager, &LaunchAtLoginManager::isEnabledChanged);
    const QSignalSpy errors(&manager, &LaunchAtLoginManager::lastErrorChanged);

    manager.setEnabled(true);
    QVERIFY(!manager.isEnabled());
    QCOMPARE(manager.lastError(), u"The disk is full."_s);
    // The state is the same, but a switch that was moved must show it again.
    QCOMPARE(states, QList<QVariantList>{{false}});
    QCOMPARE(errors.count(), 1);
}

void TestLaunchAtLoginManager::staysDisabledUntilTheUserApproves()
{
    ScriptedLoginItem system{.needsApproval = true};
    LaunchAtLoginManager manager(system.item());
    manager.setEnabled(true);
    QVERIFY(!manager.isEnabled());
    QVERIFY(!manager.lastError());
}

void TestLaunchAtLoginManager::clearsTheErrorAfterTheNextSuccess()
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

void TestLaunchAtLoginManager::refreshFindsAChangeMadeElsewhere()
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
