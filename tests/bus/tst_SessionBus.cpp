#include "bus/SessionBus.h"

#include "support/PrivateBus.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class TestSessionBus : public QObject {
    Q_OBJECT

private slots:
    void init();
    void takesTheAddressOfTheSession();
    void findsTheUsersBus();
    void isNoneWithoutASocket();
    void neverHasOneStarted();
    void takesNoForNone();
    void keepsOthersFromStartingOne_data();
    void keepsOthersFromStartingOne();
    void findsABusThatTurnsUpLater();
    void hidesABusThatHangsFromOthers();

private:
    QTemporaryDir m_runtime;
};

void TestSessionBus::init()
{
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime.path()));
    QFile::remove(m_runtime.filePath(u"bus"_s));
}

void TestSessionBus::takesTheAddressOfTheSession()
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:abstract=/tmp/dbus-1,guid=0");
    QCOMPARE(sessionBusAddress(), u"unix:abstract=/tmp/dbus-1,guid=0"_s);
}

void TestSessionBus::findsTheUsersBus()
{
    QFile socket(m_runtime.filePath(u"bus"_s));
    QVERIFY(socket.open(QFile::WriteOnly));
    QCOMPARE(sessionBusAddress(), u"unix:path="_s + socket.fileName());
}

void TestSessionBus::isNoneWithoutASocket()
{
    QCOMPARE(sessionBusAddress(), QString());
    qunsetenv("XDG_RUNTIME_DIR");
    QCOMPARE(sessionBusAddress(), QString());
}

void TestSessionBus::neverHasOneStarted()
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "autolaunch:");
    QCOMPARE(sessionBusAddress(), QString());
}

void TestSessionBus::takesNoForNone()
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    QCOMPARE(sessionBusAddress(), QString());
}

void TestSessionBus::keepsOthersFromStartingOne_data()
{
    const QByteArray runtime = QFile::encodeName(m_runtime.path());
    QTest::addColumn<QByteArray>("given");
    QTest::addColumn<QByteArray>("runtime");
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("nothing known") << QByteArray() << QByteArray() << QByteArray("disabled:");
    QTest::newRow("an order to start one")
        << QByteArray("autolaunch:") << QByteArray() << QByteArray("disabled:");
    QTest::newRow("only its usual place known")
        << QByteArray() << runtime << QByteArray("unix:path=" + runtime + "/bus");
    QTest::newRow("a place of a strange name")
        << QByteArray() << QByteArray("/run/a b,c") << QByteArray("unix:path=/run/a%20b%2Cc/bus");
    QTest::newRow("an address") << QByteArray("unix:path=/bus") << runtime
                                << QByteArray("unix:path=/bus");
}

void TestSessionBus::keepsOthersFromStartingOne()
{
    QFETCH(const QByteArray, given);
    QFETCH(const QByteArray, runtime);
    QFETCH(const QByteArray, address);
    qputenv("DBUS_SESSION_BUS_ADDRESS", given);
    qputenv("XDG_RUNTIME_DIR", runtime);
    startNoSessionBus();
    QCOMPARE(qgetenv("DBUS_SESSION_BUS_ADDRESS"), address);
}

void TestSessionBus::findsABusThatTurnsUpLater()
{
    startNoSessionBus();
    QCOMPARE(sessionBusAddress(), QString());
    QFile socket(m_runtime.filePath(u"bus"_s));
    QVERIFY(socket.open(QFile::WriteOnly));
    QCOMPARE(sessionBusAddress(), u"unix:path="_s + socket.fileName());
}

/// The last of all: hidden is hidden.
void TestSessionBus::hidesABusThatHangsFromOthers()
{
    PrivateBus bus;
    const QByteArray address = bus.address().toUtf8();
    QVERIFY(bus.start());
    hideHangingBus(60s);
    QCOMPARE(qgetenv("DBUS_SESSION_BUS_ADDRESS"), address);
    bus.hang();
    hideHangingBus(100ms);
    QCOMPARE(qgetenv("DBUS_SESSION_BUS_ADDRESS"), QByteArray("disabled:"));
    QCOMPARE(sessionBusAddress(), bus.address());
}

QTEST_GUILESS_MAIN(TestSessionBus)
#include "tst_SessionBus.moc"
