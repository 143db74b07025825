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

QTEST_GUILESS_MAIN(TestSessionBus)
#include "tst_SessionBus.moc"
