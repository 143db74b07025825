#include "bus/SystemBus.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestSystemBus : public QObject {
    Q_OBJECT

private slots:
    void usesTheAddressOfTheEnvironment();
    void hasAUsualAddress();
};

void TestSystemBus::usesTheAddressOfTheEnvironment()
{
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/somewhere/bus");
    QCOMPARE(systemBusAddress(), u"unix:path=/somewhere/bus"_s);
}

void TestSystemBus::hasAUsualAddress()
{
    qunsetenv("DBUS_SYSTEM_BUS_ADDRESS");
    QCOMPARE(systemBusAddress(), u"unix:path=/var/run/dbus/system_bus_socket"_s);
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "");
    QCOMPARE(systemBusAddress(), u"unix:path=/var/run/dbus/system_bus_socket"_s);
}

QTEST_GUILESS_MAIN(TestSystemBus)
#include "tst_SystemBus.moc"
