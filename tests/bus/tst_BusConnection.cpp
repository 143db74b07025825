#include "bus/BusConnection.h"

#include "support/PrivateBus.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int ample = 60'000; ///< Milliseconds; for a machine under load.

#define TRY_COMPARE(actual, expected) QTRY_COMPARE_WITH_TIMEOUT(actual, expected, ample)

} // namespace

class TestBusConnection : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void comesWithTheEventLoop();
    void comesAgainAfterTheBusWent();
    void waitsForABusThatHangs();
    void livesThroughTheEndOfABusThatHangs();
    void mayGoWhileTheBusHangs_data();
    void mayGoWhileTheBusHangs();

private:
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<BusConnection> m_connection;
    QStringList m_signals; ///< In the order in which they came.
};

void TestBusConnection::init()
{
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY(m_bus->start());
    m_connection = std::make_unique<BusConnection>(u"connection"_s);
    m_signals.clear();
    connect(m_connection.get(), &BusConnection::connected, this, [this] {
        m_signals.append(m_connection->bus().isConnected() ? u"connected"_s : u"not yet"_s);
    });
    connect(m_connection.get(), &BusConnection::lost, this, [this] {
        m_signals.append(m_connection->bus().isConnected() ? u"not yet"_s : u"lost"_s);
    });
}

void TestBusConnection::cleanup()
{
    m_connection.reset();
    m_bus.reset();
}

void TestBusConnection::comesWithTheEventLoop()
{
    QVERIFY(!m_connection->bus().isConnected());
    TRY_COMPARE(m_signals, QStringList{u"connected"_s});
    QCOMPARE(m_connection->address(), m_bus->address());
    QVERIFY(!m_connection->bus().baseService().isEmpty());
}

void TestBusConnection::comesAgainAfterTheBusWent()
{
    TRY_COMPARE(m_signals, QStringList{u"connected"_s});
    m_bus->kill();
    TRY_COMPARE(m_signals.value(1), u"lost"_s);
    TRY_COMPARE(m_signals.value(2), u"lost"_s); // The first attempt in vain.
    QVERIFY(m_bus->start());
    TRY_COMPARE(m_signals.last(), u"connected"_s);
    QCOMPARE(m_signals.count(u"connected"_s), 2);
}

/// The event loop goes on all the while: nothing here would come back otherwise, since nobody but
/// this thread lets the bus go on.
void TestBusConnection::waitsForABusThatHangs()
{
    m_bus->hang();
    QTest::qWait(4000); // Past the time for another attempt.
    QCOMPARE(m_signals, QStringList());
    m_bus->goOn();
    TRY_COMPARE(m_signals, QStringList{u"connected"_s});
}

void TestBusConnection::livesThroughTheEndOfABusThatHangs()
{
    m_bus->hang();
    QTest::qWait(0);
    m_bus->kill();
    TRY_COMPARE(m_signals.value(0), u"lost"_s);
    QVERIFY(m_bus->start());
    TRY_COMPARE(m_signals.last(), u"connected"_s);
}

void TestBusConnection::mayGoWhileTheBusHangs_data()
{
    QTest::addColumn<bool>("isConnected");
    QTest::newRow("before it is connected") << false;
    QTest::newRow("once it is connected") << true;
}

void TestBusConnection::mayGoWhileTheBusHangs()
{
    QFETCH(const bool, isConnected);
    if (isConnected)
        TRY_COMPARE(m_signals, QStringList{u"connected"_s});
    m_bus->hang();
    QTest::qWait(50);
    m_connection.reset();
    // Another of the same name has no more trouble for it.
    m_connection = std::make_unique<BusConnection>(u"connection"_s);
    QSignalSpy connected(m_connection.get(), &BusConnection::connected);
    QTest::qWait(50);
    QCOMPARE(connected.count(), 0);
    m_bus->goOn();
    QVERIFY(connected.wait(ample));
}

QTEST_GUILESS_MAIN(TestBusConnection)
#include "tst_BusConnection.moc"
