#include "bus/BusOpening.h"

#include "support/NoThreads.h"
#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QDBusConnectionInterface>
#include <QTest>

#include <optional>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestBusOpening : public QObject {
    Q_OBJECT

private slots:
    void failsWithoutThreads();
    void failsWithoutABus();
    void closesWithTheLastCopy();
};

/// The first test: the bus library has started no thread yet, and would wait for one.
void TestBusOpening::failsWithoutThreads()
{
    PrivateBus bus;
    QVERIFY(bus.start());
    const NoThreads none;
    QVERIFY(!openBus(bus.address()).isConnected());
}

void TestBusOpening::failsWithoutABus()
{
    QVERIFY(!openBus(u"unix:path=/nowhere/bus"_s).isConnected());
}

void TestBusOpening::closesWithTheLastCopy()
{
    PrivateBus bus;
    QVERIFY(bus.start());
    const QDBusConnection observer = openBus(bus.address());
    std::optional<QDBusConnection> connection = openBus(bus.address());
    QVERIFY(connection->isConnected());
    const QString name = connection->baseService();
    QVERIFY(name != observer.baseService());
    const auto isOnTheBus = [&] { return observer.interface()->isServiceRegistered(name).value(); };
    QVERIFY(isOnTheBus());
    connection.reset();
    TRY_VERIFY(!isOnTheBus());
}

QTEST_GUILESS_MAIN(TestBusOpening)
#include "tst_BusOpening.moc"
