#include "timeline/EnergyLedger.h"

#include <QTest>

#include <cmath>
#include <ctime>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// Seconds since 2001 of an instant in UTC.
double at(const QString &utc)
{
    QDateTime time = QDateTime::fromString(utc, Qt::ISODate);
    time.setTimeSpec(Qt::UTC);
    return static_cast<double>(time.toSecsSinceEpoch()) - 978'307'200;
}

void setZone(const QByteArray &zone)
{
    qputenv("TZ", zone);
    tzset();
}

Energy joules(double all)
{
    return {.seconds = 1, .all = all};
}

} // namespace

class TestEnergyLedger : public QObject {
    Q_OBJECT

private slots:
    void cleanup() { setZone("UTC0"); }
    void sumsALocalDay_data();
    void sumsALocalDay();
    void aWeekEndsToday();
    void aWeekHasWhatIsAddedAfterAnotherAnswer_data();
    void aWeekHasWhatIsAddedAfterAnotherAnswer();
    void takesTimesInAnyOrder();
    void forgetsTheOldest();
    void anInstantThatNoCalendarHasGivesNoDays();
};

/// A joule in each quarter of an hour of two days, so that a sum counts the quarters of a day.
void TestEnergyLedger::sumsALocalDay_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("now");
    QTest::addColumn<int>("quarters");
    const QByteArray berlin = "CET-1CEST,M3.5.0,M10.5.0/3";
    QTest::newRow("noon in UTC") << QByteArray("UTC0") << u"2026-06-10T12:00:00"_s << 48;
    QTest::newRow("a second before midnight")
        << QByteArray("UTC0") << u"2026-06-10T23:59:59"_s << 96;
    QTest::newRow("midnight") << QByteArray("UTC0") << u"2026-06-11T00:00:00"_s << 0;
    QTest::newRow("west of the date") << QByteArray("EST5") << u"2026-06-10T12:00:00"_s << 28;
    QTest::newRow("a quarter to the hour")
        << QByteArray("<+0545>-5:45") << u"2026-06-10T12:00:00"_s << 71;
    QTest::newRow("the day of 23 hours") << berlin << u"2026-03-29T21:59:59"_s << 92;
    QTest::newRow("the day of 25 hours") << berlin << u"2026-10-25T22:59:59"_s << 100;
    QTest::newRow("a midnight that does not exist")
        << QByteArray("<-04>4<-03>,M9.1.6/24,M4.1.6/24") << u"2026-09-06T12:00:00"_s << 32;
}

void TestEnergyLedger::sumsALocalDay()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, now);
    setZone(zone);
    EnergyLedger ledger;
    const double start = at(now) - std::fmod(at(now), 900) - 172'800;
    for (double time = start; time < at(now); time += 900)
        ledger.add(time, joules(1));
    QTEST(qRound(ledger.week(at(now)).back().energy.all), "quarters");
}

void TestEnergyLedger::aWeekEndsToday()
{
    setZone("UTC0");
    EnergyLedger ledger;
    ledger.add(at(u"2026-06-10T08:00:00"_s), joules(5));
    ledger.add(at(u"2026-06-12T08:00:00"_s), joules(7));
    const std::vector<DayEnergy> week = ledger.week(at(u"2026-06-12T09:00:00"_s));
    QCOMPARE(week.size(), std::size_t(7));
    QCOMPARE(week.front().date, QDate(2026, 6, 6));
    QCOMPARE(week.back().date, QDate(2026, 6, 12));
    QCOMPARE(week[4].energy.all, 5.0);
    QCOMPARE(week[5].energy, Energy()); // Nothing was measured.
    QCOMPARE(week[6].energy.all, 7.0);
}

void TestEnergyLedger::aWeekHasWhatIsAddedAfterAnotherAnswer_data()
{
    QTest::addColumn<QString>("added");
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<double>("yesterday");
    QTest::addColumn<double>("today");
    const QByteArray utc("UTC0");
    QTest::newRow("today") << u"2026-06-12T09:59:00"_s << utc << 5.0 << 10.0;
    QTest::newRow("yesterday") << u"2026-06-11T23:59:00"_s << utc << 8.0 << 7.0;
    QTest::newRow("tomorrow, by a clock that was wrong")
        << u"2026-06-13T00:00:00"_s << utc << 5.0 << 7.0;
    QTest::newRow("in another zone")
        << u"2026-06-12T09:59:00"_s << QByteArray("EST5") << 7.0 << 3.0;
}

void TestEnergyLedger::aWeekHasWhatIsAddedAfterAnotherAnswer()
{
    QFETCH(const QString, added);
    QFETCH(const QByteArray, zone);
    setZone("UTC0");
    EnergyLedger ledger;
    ledger.add(at(u"2026-06-11T04:30:00"_s), joules(5));
    ledger.add(at(u"2026-06-12T04:30:00"_s), joules(7));
    const double now = at(u"2026-06-12T10:00:00"_s);
    QCOMPARE(ledger.week(now).back().energy.all, 7.0);
    ledger.add(at(added), joules(3));
    setZone(zone);
    for (int answers = 0; answers < 2; ++answers) {
        const std::vector<DayEnergy> week = ledger.week(now);
        QTEST(week[5].energy.all, "yesterday");
        QTEST(week[6].energy.all, "today");
    }
}

void TestEnergyLedger::takesTimesInAnyOrder()
{
    EnergyLedger ledger;
    for (const double time : {1800.0, 0.0, 900.0, 899.0, 2699.0})
        ledger.add(time, joules(1));
    QCOMPARE(ledger.quarters().size(), std::size_t(3));
    QCOMPARE(ledger.quarters()[0].energy.all, 2.0);
    QCOMPARE(ledger.quarters()[1].energy.all, 1.0);
    QCOMPARE(ledger.quarters()[2].energy.all, 2.0);
}

void TestEnergyLedger::forgetsTheOldest()
{
    EnergyLedger ledger;
    const auto *place = ledger.quarters().data();
    for (int quarter = 0; quarter < 2'000; ++quarter)
        ledger.add(quarter * 900, joules(1));
    QCOMPARE(ledger.quarters().size(), std::size_t(9 * 96));
    QCOMPARE(ledger.quarters().back().start, 1'999.0 * 900);
    QCOMPARE(ledger.quarters().data(), place); // It takes its memory once.
}

void TestEnergyLedger::anInstantThatNoCalendarHasGivesNoDays()
{
    QVERIFY(EnergyLedger().week(1e300).empty());
}

QTEST_APPLESS_MAIN(TestEnergyLedger)
#include "tst_EnergyLedger.moc"
