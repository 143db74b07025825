#include "bus/BusProbe.h"

#include "support/PrivateBus.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include <chrono>
#include <memory>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr int ample = 60'000; ///< Milliseconds; for a machine under load.

} // namespace

class TestBusProbe : public QObject {
    Q_OBJECT

private slots:
    void namesTheSocketOfAnAddress_data();
    void namesTheSocketOfAnAddress();
    void hearsARunningBus();
    void takesOtherAddressesForAnswered();
    void isRefusedWhereNobodyListens_data();
    void isRefusedWhereNobodyListens();
    void hearsNothingOfABusThatHangs();
    void isRefusedByABusThatDies();
    void mayGoBeforeTheAnswer();
    void tellsABusThatHangs();
};

void TestBusProbe::namesTheSocketOfAnAddress_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<std::optional<std::string>>("expected");
    const auto row = [](const char *name, const QString &address,
                        const std::optional<std::string> &expected) {
        QTest::newRow(name) << address << expected;
    };
    row("a path", u"unix:path=/run/user/1000/bus"_s, "/run/user/1000/bus");
    row("behind other things", u"unix:guid=0a1b,path=/run/bus"_s, "/run/bus");
    row("before other things", u"unix:path=/run/bus,guid=0a1b"_s, "/run/bus");
    row("with escapes", u"unix:path=/tmp/a%2cb%20c%3d"_s, "/tmp/a,b c=");
    row("an abstract name", u"unix:abstract=/tmp/dbus-x,guid=0a1b"_s,
        std::string(1, '\0') + "/tmp/dbus-x");
    row("several to choose from", u"unix:path=/a;unix:path=/b"_s, std::nullopt);
    row("another machine", u"tcp:host=localhost,port=1"_s, std::nullopt);
    row("a program to start", u"unixexec:path=/bin/cat"_s, std::nullopt);
    row("a socket without a name", u"unix:runtime=yes"_s, std::nullopt);
    row("no address", u"path=/run/bus"_s, std::nullopt);
    row("nothing", QString(), std::nullopt);
}

void TestBusProbe::namesTheSocketOfAnAddress()
{
    QFETCH(const QString, address);
    QTEST(busSocket(address), "expected");
}

void TestBusProbe::hearsARunningBus()
{
    PrivateBus bus;
    QVERIFY(bus.start());
    const BusProbe knock(bus.address());
    QSignalSpy answers(&knock, &BusProbe::answered);
    QVERIFY(answers.wait(ample));
}

void TestBusProbe::takesOtherAddressesForAnswered()
{
    const BusProbe knock(u"tcp:host=localhost,port=1"_s);
    QSignalSpy answers(&knock, &BusProbe::answered);
    QCOMPARE(answers.count(), 0);
    QVERIFY(answers.wait(ample));
}

void TestBusProbe::isRefusedWhereNobodyListens_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("no such file") << u"unix:path=/nowhere/bus"_s;
    QTest::newRow("a file") << u"unix:path=/etc/passwd"_s;
    QTest::newRow("no name") << u"unix:path="_s;
    QTest::newRow("a name that is too long") << u"unix:path=/"_s + QString(1000, u'x');
    QTest::newRow("an abstract name") << u"unix:abstract=corvane/nobody"_s;
}

void TestBusProbe::isRefusedWhereNobodyListens()
{
    QFETCH(const QString, address);
    const BusProbe knock(address);
    QSignalSpy refusals(&knock, &BusProbe::refused);
    QCOMPARE(refusals.count(), 0);
    QVERIFY(refusals.wait(ample));
}

void TestBusProbe::hearsNothingOfABusThatHangs()
{
    PrivateBus bus;
    QVERIFY(bus.start());
    bus.hang();
    const BusProbe knock(bus.address());
    QSignalSpy answers(&knock, &BusProbe::answered);
    const QSignalSpy refusals(&knock, &BusProbe::refused);
    QVERIFY(!answers.wait(500));
    bus.goOn();
    QVERIFY(answers.wait(ample));
    QTest::qWait(0);
    QCOMPARE(answers.count(), 1);
    QCOMPARE(refusals.count(), 0);
}

void TestBusProbe::isRefusedByABusThatDies()
{
    PrivateBus bus;
    QVERIFY(bus.start());
    bus.hang();
    const BusProbe knock(bus.address());
    QSignalSpy refusals(&knock, &BusProbe::refused);
    bus.kill();
    QVERIFY(refusals.count() == 1 || refusals.wait(ample));
}

void TestBusProbe::mayGoBeforeTheAnswer()
{
    PrivateBus bus;
    QVERIFY(bus.start());
    for (const QString &address : {bus.address(), u"unix:path=/nowhere/bus"_s, u"tcp:x=y"_s}) {
        auto knock = std::make_unique<BusProbe>(address);
        const QSignalSpy answers(knock.get(), &BusProbe::answered);
        const QSignalSpy refusals(knock.get(), &BusProbe::refused);
        knock.reset();
        QTest::qWait(50);
        QCOMPARE(answers.count() + refusals.count(), 0);
    }
}

void TestBusProbe::tellsABusThatHangs()
{
    constexpr auto ever = std::chrono::milliseconds(ample);
    QVERIFY(!busHangs(u"unix:path=/nowhere/bus"_s, ever));
    QVERIFY(!busHangs(u"tcp:host=localhost,port=1"_s, ever));
    QVERIFY(!busHangs(QString(), ever));
    PrivateBus bus;
    QVERIFY(bus.start());
    QVERIFY(!busHangs(bus.address(), ever));
    bus.hang();
    QVERIFY(busHangs(bus.address(), std::chrono::milliseconds(100)));
}

QTEST_GUILESS_MAIN(TestBusProbe)
#include "tst_BusProbe.moc"
