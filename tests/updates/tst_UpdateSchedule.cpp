#include "updates/UpdateSchedule.h"

#include <QTest>

#include <limits>

using namespace corvane;

class TestUpdateSchedule : public QObject {
    Q_OBJECT

private slots:
    void waitsForTheRestOfTheDay_data();
    void waitsForTheRestOfTheDay();
};

void TestUpdateSchedule::waitsForTheRestOfTheDay_data()
{
    QTest::addColumn<double>("now");
    QTest::addColumn<std::optional<double>>("last");
    QTest::addColumn<double>("seconds");
    constexpr double now = 800'000'000;
    constexpr double day = updateCheckInterval;
    QTest::newRow("never checked") << now << std::optional<double>() << 0.0;
    QTest::newRow("checked just now") << now << std::optional(now) << day;
    QTest::newRow("an hour ago") << now << std::optional(now - 3600) << day - 3600;
    QTest::newRow("a day ago") << now << std::optional(now - day) << 0.0;
    QTest::newRow("years ago") << now << std::optional(0.0) << 0.0;
    QTest::newRow("in the future") << now << std::optional(now + 1) << 0.0;
    QTest::newRow("not a number") << now << std::optional(std::numeric_limits<double>::quiet_NaN())
                                  << 0.0;
    QTest::newRow("the clock is not a number")
        << std::numeric_limits<double>::quiet_NaN() << std::optional(now) << 0.0;
    QTest::newRow("before 2001") << -5.0 << std::optional(-10.0) << day - 5;
}

void TestUpdateSchedule::waitsForTheRestOfTheDay()
{
    QFETCH(const double, now);
    QFETCH(const std::optional<double>, last);
    QTEST(secondsUntilUpdateCheck(now, last), "seconds");
}

QTEST_GUILESS_MAIN(TestUpdateSchedule)
#include "tst_UpdateSchedule.moc"
