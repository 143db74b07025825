#include "bus/AccessibilityBus.h"

#include "bus/BusOpening.h"
#include "support/HalfBus.h"
#include "support/PrivateBus.h"

#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QTemporaryDir>
#include <QTest>
#include <QThread>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// What the libraries ask for the state.
class Status : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.a11y.Status")
    Q_PROPERTY(bool IsEnabled MEMBER m_isEnabled CONSTANT)
    Q_PROPERTY(bool ScreenReaderEnabled MEMBER m_isReading CONSTANT)

public:
    Status(QObject &service, bool isEnabled, bool isReading)
        : QDBusAbstractAdaptor(&service),
          m_isEnabled(isEnabled),
          m_isReading(isReading)
    {
    }

private:
    const bool m_isEnabled;
    const bool m_isReading;
};

/// What they ask for the address.
class Address : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.a11y.Bus")

public:
    Address(QObject &service, QString address)
        : QDBusAbstractAdaptor(&service),
          m_address(std::move(address))
    {
    }

public slots:
    QString GetAddress() const { return m_address; }

private:
    const QString m_address;
};

} // namespace

class TestAccessibilityBus : public QObject {
    Q_OBJECT

private slots:
    void init();
    void hidesOnlyABusThatHangs_data();
    void hidesOnlyABusThatHangs();
    void hidesAGivenBusThatHangs();
    void asksNobodyWithoutABus();

private:
    QTemporaryDir m_folder;
};

void TestAccessibilityBus::init()
{
    qunsetenv("AT_SPI_BUS_ADDRESS");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
    qputenv("XDG_RUNTIME_DIR", m_folder.path().toUtf8());
}

void TestAccessibilityBus::hidesOnlyABusThatHangs_data()
{
    QTest::addColumn<bool>("isEnabled");
    QTest::addColumn<bool>("isReading");
    QTest::addColumn<bool>("hangs");
    QTest::addColumn<bool>("isHidden");
    QTest::newRow("one that hangs") << true << false << true << true;
    QTest::newRow("one that hangs, for a screen reader") << false << true << true << true;
    QTest::newRow("one that answers") << true << false << false << false;
    QTest::newRow("one that is turned off is not started") << false << false << true << false;
}

void TestAccessibilityBus::hidesOnlyABusThatHangs()
{
    QFETCH(const bool, isEnabled);
    QFETCH(const bool, isReading);
    QFETCH(const bool, hangs);
    QFETCH(const bool, isHidden);
    PrivateBus bus;
    QVERIFY(bus.start());
    qputenv("DBUS_SESSION_BUS_ADDRESS", bus.address().toUtf8());
    const HalfBus half(HalfBus::Transport::unixSocket, m_folder.filePath(u"half"_s).toStdString());
    // The main thread waits, so another one has to answer.
    QThread thread;
    auto *service = new QObject;
    new Status(*service, isEnabled, isReading);
    new Address(*service, hangs ? half.address() : bus.address());
    QDBusConnection connection = openBus(bus.address());
    QVERIFY(connection.registerObject(u"/org/a11y/bus"_s, service));
    QVERIFY(connection.registerService(u"org.a11y.Bus"_s));
    service->moveToThread(&thread);
    connect(&thread, &QThread::finished, service, &QObject::deleteLater);
    thread.start();
    disableHangingAccessibilityBus(300ms);
    thread.quit();
    thread.wait();
    QCOMPARE(half.greetings() > 0, isHidden);
    QCOMPARE(qgetenv("AT_SPI_BUS_ADDRESS") == "disabled:", isHidden);
}

void TestAccessibilityBus::hidesAGivenBusThatHangs()
{
    const HalfBus half(HalfBus::Transport::unixSocket, m_folder.filePath(u"given"_s).toStdString());
    qputenv("AT_SPI_BUS_ADDRESS", half.address().toUtf8());
    disableHangingAccessibilityBus(100ms);
    QCOMPARE(qgetenv("AT_SPI_BUS_ADDRESS"), "disabled:"_ba);
}

void TestAccessibilityBus::asksNobodyWithoutABus()
{
    disableHangingAccessibilityBus(100ms);
    QVERIFY(!qEnvironmentVariableIsSet("AT_SPI_BUS_ADDRESS"));
}

QTEST_GUILESS_MAIN(TestAccessibilityBus)
#include "tst_AccessibilityBus.moc"
