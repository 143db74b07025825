#include "instance/ApplicationService.h"
#include "simulated_mac/recorded/Messages.h"

#include <QSignalSpy>
#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

class TestApplicationServiceOnMac : public QObject {
    Q_OBJECT

private slots:
    void opensTheWindowAgain();
    void replacesTheHandlerOfTheApplication();
    void canBeDeletedByItsSignal();
    void hearsNothingAfterItsEnd();
};

void TestApplicationServiceOnMac::opensTheWindowAgain()
{
    const auto service = makeApplicationService({});
    const QSignalSpy requests(service.get(), &ApplicationService::openRequested);
    QVERIFY(reopen());
    QCOMPARE(requests.count(), 1);
    QCOMPARE(requests.first().first().toByteArray(), QByteArray());
}

/// It installs its own while it enters the event loop.
void TestApplicationServiceOnMac::replacesTheHandlerOfTheApplication()
{
    const auto service = makeApplicationService({});
    const QSignalSpy requests(service.get(), &ApplicationService::openRequested);
    forgetReopenHandler();
    QVERIFY(!reopen());
    post("NSApplicationWillFinishLaunchingNotification", nullptr);
    QVERIFY(reopen());
    QCOMPARE(requests.count(), 1);
}

void TestApplicationServiceOnMac::canBeDeletedByItsSignal()
{
    auto service = makeApplicationService({});
    connect(service.get(), &ApplicationService::openRequested, this,
            [&service] { service.reset(); });
    QVERIFY(reopen());
    QVERIFY(!service);
}

void TestApplicationServiceOnMac::hearsNothingAfterItsEnd()
{
    makeApplicationService({}).reset();
    QVERIFY(!reopen());
    post("NSApplicationWillFinishLaunchingNotification", nullptr);
    QVERIFY(!reopen());
}

QTEST_GUILESS_MAIN(TestApplicationServiceOnMac)
#include "tst_ApplicationService_mac.moc"
