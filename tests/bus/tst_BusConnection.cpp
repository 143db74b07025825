#include "bus/BusConnection.h"

#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QSignalSpy>
#include <QTest>

#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto retryInterval = 20ms;

} // namespace

class TestBusConnection : public QObject {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void connectsInTheEventLoop();
    void connectsAgainAfterTheBusEnded();
    void waitsForABusThatHangs();
    void survivesTheEndOfABusThatHangs();
    void canBeDeletedWhileTheBusHangs_data();
    void canBeDeletedWhileTheBusHangs();

private:
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<BusConnection> m_connection;
    QStringList m_signals; ///< In the order of emission.
};

void TestBusConnection::init()
{
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY(m_bus->start());
    m_connection = std::make_unique<BusConnection>(u"connection"_s, retryInterval);
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

void TestBusConnection::connectsInTheEventLoop()
{
    QVERIFY(!m_connection->bus().isConnected());
    TRY_COMPARE(m_signals, QStringList{u"connected"_s});
    QCOMPARE(m_connection->address(), m_bus->address());
    QVERIFY(!m_connection->bus().baseService().isEmpty());
}

void TestBusConnection::connectsAgainAfterTheBusEnded()
{
    TRY_COMPARE(m_signals, QStringList{u"connected"_s});
    m_bus->kill();
    TRY_COMPARE(m_signals.value(1), u"lost"_s);
    TRY_COMPARE(m_signals.value(2), u"lost"_s); // The first failed attempt.
    QVERIFY(m_bus->start());
    TRY_COMPARE(m_signals.last(), u"connected"_s);
    QCOMPARE(m_signals.count(u"connected"_s), 2);
}

/// If the connection blocked, the test would never end: this thread lets the bus go on.
void TestBusConnection::waitsForABusThatHangs()
{
    m_bus->hang();
    QTest::qWait(static_cast<int>(5 * retryInterval.count()));
    QCOMPARE(m_signals, QStringList());
    m_bus->goOn();
    TRY_COMPARE(m_signals, QStringList{u"connected"_s});
}

void TestBusConnection::survivesTheEndOfABusThatHangs()
{
    m_bus->hang();
    QTest::qWait(0);
    m_bus->kill();
    TRY_COMPARE(m_signals.value(0), u"lost"_s);
    QVERIFY(m_bus->start());
    TRY_COMPARE(m_signals.last(), u"connected"_s);
}

void TestBusConnection::canBeDeletedWhileTheBusHangs_data()
{
    QTest::addColumn<bool>("isConnected");
    QTest::newRow("before it is connected") << false;
    QTest::newRow("once it is connected") << true;
}

void TestBusConnection::canBeDeletedWhileTheBusHangs()
{
    QFETCH(const bool, isConnected);
    if (isConnected)
        TRY_COMPARE(m_signals, QStringList{u"connected"_s});
    m_bus->hang();
    QTest::qWait(50);
    m_connection.reset();
    // A new connection of the same name works as well.
    m_connection = std::make_unique<BusConnection>(u"connection"_s, retryInterval);
    QSignalSpy connected(m_connection.get(), &BusConnection::connected);
    QTest::qWait(50);
    QCOMPARE(connected.count(), 0);
    m_bus->goOn();
    QVERIFY(connected.wait(patience));
}

QTEST_GUILESS_MAIN(TestBusConnection)
#include "tst_BusConnection.moc"
