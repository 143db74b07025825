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

constexpr int longWait = 60'000; ///< Milliseconds; for a machine under load.

} // namespace

class TestBusProbe : public QObject {
    Q_OBJECT

private slots:
    void namesTheSocketOfAnAddress_data();
    void namesTheSocketOfAnAddress();
    void reportsARunningBus();
    void countsOtherAddressesAsAnswered();
    void isRefusedWhereNothingListens_data();
    void isRefusedWhereNothingListens();
    void waitsForABusThatHangs();
    void isRefusedByABusThatEnds();
    void canBeDeletedBeforeTheAnswer();
    void detectsABusThatHangs();
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
    row("after other keys", u"unix:guid=0a1b,path=/run/bus"_s, "/run/bus");
    row("before other keys", u"unix:path=/run/bus,guid=0a1b"_s, "/run/bus");
    row("with escapes", u"unix:path=/tmp/a%2cb%20c%3d"_s, "/tmp/a,b c=");
    row("an abstract name", u"unix:abstract=/tmp/dbus-x,guid=0a1b"_s,
        std::string(1, '\0') + "/tmp/dbus-x");
    row("several addresses", u"unix:path=/a;unix:path=/b"_s, std::nullopt);
    row("another machine", u"tcp:host=localhost,port=1"_s, std::nullopt);
    row("a program to start", u"unixexec:path=/bin/cat"_s, std::nullopt);
    row("a socket without a name", u"unix:runtime=yes"_s, std::nullopt);
    row("no transport", u"path=/run/bus"_s, std::nullopt);
    row("empty", QString(), std::nullopt);
}

void TestBusProbe::namesTheSocketOfAnAddress()
{
    QFETCH(const QString, address);
    QTEST(busSocket(address), "expected");
}

void TestBusProbe::reportsARunningBus()
{
    PrivateBus bus;
    QVERIFY(bus.start());
    const BusProbe probe(bus.address());
    QSignalSpy answers(&probe, &BusProbe::answered);
    QVERIFY(answers.wait(longWait));
}

void TestBusProbe::countsOtherAddressesAsAnswered()
{
    const BusProbe probe(u"tcp:host=localhost,port=1"_s);
    QSignalSpy answers(&probe, &BusProbe::answered);
    QCOMPARE(answers.count(), 0);
    QVERIFY(answers.wait(longWait));
}

void TestBusProbe::isRefusedWhereNothingListens_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("no such file") << u"unix:path=/nowhere/bus"_s;
    QTest::newRow("a file") << u"unix:path=/etc/passwd"_s;
    QTest::newRow("no name") << u"unix:path="_s;
    QTest::newRow("a name that is too long") << u"unix:path=/"_s + QString(1000, u'x');
    QTest::newRow("an abstract name") << u"unix:abstract=corvane/missing"_s;
}

void TestBusProbe::isRefusedWhereNothingListens()
{
    QFETCH(const QString, address);
    const BusProbe probe(address);
    QSignalSpy refusals(&probe, &BusProbe::refused);
    QCOMPARE(refusals.count(), 0);
    QVERIFY(refusals.wait(longWait));
}

void TestBusProbe::waitsForABusThatHangs()
{
    PrivateBus bus;
    QVERIFY(bus.start());
    bus.hang();
    const BusProbe probe(bus.address());
    QSignalSpy answers(&probe, &BusProbe::answered);
    const QSignalSpy refusals(&probe, &BusProbe::refused);
    QVERIFY(!answers.wait(100));
    bus.goOn();
    QVERIFY(answers.wait(longWait));
    QTest::qWait(0);
    QCOMPARE(answers.count(), 1);
    QCOMPARE(refusals.count(), 0);
}

void TestBusProbe::isRefusedByABusThatEnds()
{
    PrivateBus bus;
    QVERIFY(bus.start());
    bus.hang();
    const BusProbe probe(bus.address());
    QSignalSpy refusals(&probe, &BusProbe::refused);
    bus.kill();
    QVERIFY(refusals.count() == 1 || refusals.wait(longWait));
}

void TestBusProbe::canBeDeletedBeforeTheAnswer()
{
    PrivateBus bus;
    QVERIFY(bus.start());
    for (const QString &address : {bus.address(), u"unix:path=/nowhere/bus"_s, u"tcp:x=y"_s}) {
        auto probe = std::make_unique<BusProbe>(address);
        const QSignalSpy answers(probe.get(), &BusProbe::answered);
        const QSignalSpy refusals(probe.get(), &BusProbe::refused);
        probe.reset();
        QTest::qWait(50);
        QCOMPARE(answers.count() + refusals.count(), 0);
    }
}

void TestBusProbe::detectsABusThatHangs()
{
    constexpr auto longest = std::chrono::milliseconds(longWait);
    QVERIFY(!busHangs(u"unix:path=/nowhere/bus"_s, longest));
    QVERIFY(!busHangs(u"tcp:host=localhost,port=1"_s, longest));
    QVERIFY(!busHangs(QString(), longest));
    PrivateBus bus;
    QVERIFY(bus.start());
    QVERIFY(!busHangs(bus.address(), longest));
    bus.hang();
    QVERIFY(busHangs(bus.address(), std::chrono::milliseconds(100)));
}

QTEST_GUILESS_MAIN(TestBusProbe)
#include "tst_BusProbe.moc"
