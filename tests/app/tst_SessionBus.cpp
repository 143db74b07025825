#include "app/SessionBus.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

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

QTEST_GUILESS_MAIN(TestSessionBus)
#include "tst_SessionBus.moc"
