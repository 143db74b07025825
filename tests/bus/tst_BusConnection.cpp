#include "bus/BusConnection.h"

#include "support/HalfBus.h"
#include "support/PrivateBus.h"
#include "support/Waiting.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
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
    void halfABusBlocksNothing_data();
    void halfABusBlocksNothing();

private:
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<BusConnection> m_connection;
    QStringList m_signals; ///< In the order of emission.
};

void TestBusConnection::init()
{
    m_bus = std::make_unique<PrivateBus>();
    QVERIFY(m_bus->start());
    m_connection = std::make_unique<BusConnection>(retryInterval);
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
    m_connection = std::make_unique<BusConnection>(retryInterval);
    QSignalSpy connected(m_connection.get(), &BusConnection::connected);
    QTest::qWait(50);
    QCOMPARE(connected.count(), 0);
    m_bus->goOn();
    QVERIFY(connected.wait(patience));
}

void TestBusConnection::halfABusBlocksNothing_data()
{
    QTest::addColumn<QString>("address"); // %1 stands for that of the half bus.
    QTest::addColumn<bool>("isTCP");
    QTest::addColumn<int>("wholeClients");
    QTest::newRow("at a path") << u"%1"_s << false << 0;
    QTest::newRow("at a port") << u"%1"_s << true << 0;
    QTest::newRow("in a list") << u"unix:path=/nowhere/bus;%1"_s << false << 0;
    // The probe is answered, and then the bus library waits for up to 25 seconds.
    QTest::newRow("after it answered the probe") << u"%1"_s << false << 1;
}

void TestBusConnection::halfABusBlocksNothing()
{
    QFETCH(const QString, address);
    QFETCH(const bool, isTCP);
    QFETCH(const int, wholeClients);
    const QTemporaryDir folder;
    const auto transport = isTCP ? HalfBus::Transport::tcp : HalfBus::Transport::unixSocket;
    const HalfBus half(transport, folder.filePath(u"bus"_s).toStdString(), wholeClients);
    QVERIFY(!half.address().isEmpty());
    qputenv("DBUS_SESSION_BUS_ADDRESS", QString(address).replace(u"%1"_s, half.address()).toUtf8());
    m_connection = std::make_unique<BusConnection>(retryInterval);
    QSignalSpy connected(m_connection.get(), &BusConnection::connected);
    QElapsedTimer longestTurn;
    qint64 longest = 0;
    while (half.greetings() <= wholeClients) {
        longestTurn.start();
        QCoreApplication::processEvents();
        longest = std::max(longest, longestTurn.elapsed());
    }
    longestTurn.start();
    QTest::qWait(50);
    m_connection.reset();
    longest = std::max(longest, longestTurn.elapsed());
    QVERIFY2(longest < 10'000, qPrintable(QString::number(longest)));
    QCOMPARE(connected.count(), 0);
}

QTEST_GUILESS_MAIN(TestBusConnection)
#include "tst_BusConnection.moc"
