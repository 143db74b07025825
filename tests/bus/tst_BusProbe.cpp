#include "bus/BusProbe.h"

#include "support/HalfBus.h"
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
    void reportsARunningBus();
    void countsOtherAddressesAsAnswered();
    void isRefusedWhereNothingListens_data();
    void isRefusedWhereNothingListens();
    void waitsForABusThatHangs();
    void isRefusedByABusThatEnds();
    void canBeDeletedBeforeTheAnswer();
    void detectsABusThatHangs();
};

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
    const BusProbe probe(u"unixexec:path=/bin/cat"_s);
    QSignalSpy answers(&probe, &BusProbe::answered);
    QCOMPARE(answers.count(), 0);
    QVERIFY(answers.wait(longWait));
}

void TestBusProbe::isRefusedWhereNothingListens_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("no such file") << u"unix:path=/nowhere/bus"_s;
    QTest::newRow("a file") << u"unix:path=/etc/passwd"_s;
    QTest::newRow("a name that is too long") << u"unix:path=/"_s + QString(1000, u'x');
    QTest::newRow("a port") << u"tcp:host=localhost,port=1"_s;
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
    const HalfBus half(HalfBus::Transport::tcp, {});
    for (const QString &address :
         {bus.address(), u"unix:path=/nowhere/bus"_s, u"tcp:x=y"_s, half.address()}) {
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
    QVERIFY(busHangs(u"unixexec:path=/bin/cat"_s, longest)); // It cannot be known.
    PrivateBus bus;
    QVERIFY(bus.start());
    QVERIFY(!busHangs(bus.address(), longest));
    bus.hang();
    QVERIFY(busHangs(bus.address(), std::chrono::milliseconds(100)));
    const HalfBus half(HalfBus::Transport::tcp, {});
    QVERIFY(busHangs(half.address(), std::chrono::milliseconds(100)));
}

QTEST_GUILESS_MAIN(TestBusProbe)
#include "tst_BusProbe.moc"
