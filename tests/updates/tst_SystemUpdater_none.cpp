#include "updates/UpdaterManager.h"

#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestSystemUpdaterNone : public QObject {
    Q_OBJECT

private slots:
    void offersNothing();
    void doesNothing();
};

void TestSystemUpdaterNone::offersNothing()
{
    const UpdaterManager manager;
    QVERIFY(!manager.isOffered());
    QVERIFY(!manager.canCheck());
    QVERIFY(!manager.automaticallyChecks());
    QVERIFY(!manager.finding());
}

void TestSystemUpdaterNone::doesNothing()
{
    const auto updater = makeSystemUpdater();
    const QSignalSpy canCheckChanged(updater.get(), &SystemUpdater::canCheckChanged);
    const QSignalSpy findingChanged(updater.get(), &SystemUpdater::findingChanged);
    updater->setAutomaticallyChecks(true);
    updater->check();
    updater->refresh();
    QCOMPARE(canCheckChanged.size(), 0);
    QCOMPARE(findingChanged.size(), 0);
    QVERIFY(!updater->automaticallyChecks());
}

QTEST_GUILESS_MAIN(TestSystemUpdaterNone)
#include "tst_SystemUpdater_none.moc"
