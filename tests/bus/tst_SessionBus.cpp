#include "bus/SessionBus.h"

#include "support/HalfBus.h"
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
    void usesTheAddressOfTheSession();
    void findsTheUsersBus();
    void isEmptyWithoutASocket();
    void isEmptyWhereABusWouldBeStarted();
    void isEmptyWhereTheBusIsDisabled();
    void preventsThatLibrariesStartABus_data();
    void preventsThatLibrariesStartABus();
    void findsABusThatAppearsLater();
    void disablesABusThatHangsForLibraries();

private:
    QTemporaryDir m_runtime;
};

void TestSessionBus::init()
{
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_runtime.path()));
    QFile::remove(m_runtime.filePath(u"bus"_s));
}

void TestSessionBus::usesTheAddressOfTheSession()
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

void TestSessionBus::isEmptyWithoutASocket()
{
    QCOMPARE(sessionBusAddress(), QString());
    qunsetenv("XDG_RUNTIME_DIR");
    QCOMPARE(sessionBusAddress(), QString());
}

void TestSessionBus::isEmptyWhereABusWouldBeStarted()
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "autolaunch:");
    QCOMPARE(sessionBusAddress(), QString());
}

void TestSessionBus::isEmptyWhereTheBusIsDisabled()
{
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    QCOMPARE(sessionBusAddress(), QString());
}

void TestSessionBus::preventsThatLibrariesStartABus_data()
{
    const QByteArray runtime = QFile::encodeName(m_runtime.path());
    QTest::addColumn<QByteArray>("given");
    QTest::addColumn<QByteArray>("runtime");
    QTest::addColumn<QByteArray>("address");
    QTest::newRow("no address, no runtime folder")
        << QByteArray() << QByteArray() << QByteArray("disabled:");
    QTest::newRow("an address that starts a bus")
        << QByteArray("autolaunch:") << QByteArray() << QByteArray("disabled:");
    QTest::newRow("only a runtime folder")
        << QByteArray() << runtime << QByteArray("unix:path=" + runtime + "/bus");
    QTest::newRow("a runtime folder with special characters")
        << QByteArray() << QByteArray("/run/a b,c") << QByteArray("unix:path=/run/a%20b%2Cc/bus");
    QTest::newRow("an address") << QByteArray("unix:path=/bus") << runtime
                                << QByteArray("unix:path=/bus");
}

void TestSessionBus::preventsThatLibrariesStartABus()
{
    QFETCH(const QByteArray, given);
    QFETCH(const QByteArray, runtime);
    QFETCH(const QByteArray, address);
    qputenv("DBUS_SESSION_BUS_ADDRESS", given);
    qputenv("XDG_RUNTIME_DIR", runtime);
    preventBusStart();
    QCOMPARE(qgetenv("DBUS_SESSION_BUS_ADDRESS"), address);
}

void TestSessionBus::findsABusThatAppearsLater()
{
    preventBusStart();
    QCOMPARE(sessionBusAddress(), QString());
    QFile socket(m_runtime.filePath(u"bus"_s));
    QVERIFY(socket.open(QFile::WriteOnly));
    QCOMPARE(sessionBusAddress(), u"unix:path="_s + socket.fileName());
}

/// The last test: what is disabled stays disabled.
void TestSessionBus::disablesABusThatHangsForLibraries()
{
    PrivateBus bus;
    const QByteArray address = bus.address().toUtf8();
    QVERIFY(bus.start());
    disableHangingBus(60s);
    QCOMPARE(qgetenv("DBUS_SESSION_BUS_ADDRESS"), address);
    bus.hang();
    disableHangingBus(100ms);
    QCOMPARE(qgetenv("DBUS_SESSION_BUS_ADDRESS"), QByteArray("disabled:"));
    QCOMPARE(sessionBusAddress(), bus.address());

    const HalfBus half(HalfBus::Transport::unixSocket, m_runtime.filePath(u"half"_s).toStdString());
    qputenv("DBUS_SESSION_BUS_ADDRESS", half.address().toUtf8());
    disableHangingBus(100ms);
    QCOMPARE(qgetenv("DBUS_SESSION_BUS_ADDRESS"), QByteArray("disabled:"));
    QCOMPARE(sessionBusAddress(), half.address());
}

QTEST_GUILESS_MAIN(TestSessionBus)
#include "tst_SessionBus.moc"
