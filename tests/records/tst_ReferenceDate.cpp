#include "records/ReferenceDate.h"

#include <QTest>
#include <QTimeZone>

#include <limits>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestReferenceDate : public QObject {
    Q_OBJECT

private slots:
    void theWallClockCountsFrom2001();
    void localDates_data();
    void localDates();
    void isInvalidForValuesThatNoClockHas_data();
    void isInvalidForValuesThatNoClockHas();
};

void TestReferenceDate::theWallClockCountsFrom2001()
{
    const QDateTime start(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    const qint64 before = start.msecsTo(QDateTime::currentDateTimeUtc());
    const double now = secondsSince2001() * 1000;
    const qint64 after = start.msecsTo(QDateTime::currentDateTimeUtc());
    // Qt's own clock is cut to milliseconds.
    QVERIFY(now >= double(before) - 1);
    QVERIFY(now <= double(after) + 1);
}

void TestReferenceDate::localDates_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("expected");
    QTest::newRow("the reference date") << 0.0 << u"2001-01-01T00:00:00.000Z"_s;
    QTest::newRow("a fraction") << 0.5 << u"2001-01-01T00:00:00.500Z"_s;
    QTest::newRow("cut, not rounded") << 0.9996 << u"2001-01-01T00:00:00.999Z"_s;
    QTest::newRow("a day in 2025") << 757382400.25 << u"2025-01-01T00:00:00.250Z"_s;
    QTest::newRow("before the reference date") << -1.0 << u"2000-12-31T23:59:59.000Z"_s;
    QTest::newRow("before 1970, cut to the earlier")
        << -978307200.0 - 0.00025 << u"1969-12-31T23:59:59.999Z"_s;
}

void TestReferenceDate::localDates()
{
    QFETCH(double, seconds);
    const QDateTime date = localDateTime(seconds);
    QCOMPARE(date.timeSpec(), Qt::LocalTime);
    QTEST(date.toUTC().toString(Qt::ISODateWithMs), "expected");
}

void TestReferenceDate::isInvalidForValuesThatNoClockHas_data()
{
    QTest::addColumn<double>("seconds");
    QTest::newRow("not a number") << std::numeric_limits<double>::quiet_NaN();
    QTest::newRow("infinity") << std::numeric_limits<double>::infinity();
    QTest::newRow("the largest number") << std::numeric_limits<double>::max();
    QTest::newRow("the lowest number") << std::numeric_limits<double>::lowest();
}

void TestReferenceDate::isInvalidForValuesThatNoClockHas()
{
    QFETCH(double, seconds);
    QVERIFY(!localDateTime(seconds).isValid());
}

QTEST_APPLESS_MAIN(TestReferenceDate)
#include "tst_ReferenceDate.moc"
