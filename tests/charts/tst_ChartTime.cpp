#include "charts/ChartTime.h"

#include <QTest>

#include <limits>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestChartTime : public QObject {
    Q_OBJECT

private slots:
    void namesTheWeekdayWhereAMidnightLiesWithin_data();
    void namesTheWeekdayWhereAMidnightLiesWithin();
    void initTestCase() { qputenv("TZ", "UTC"); }
    void labelsFollowTheLocale_data();
    void labelsFollowTheLocale();
    void labelsStartMiddleAndEndOfARange();
    void noLabelForATimeThatNoCalendarHas();
};

void TestChartTime::namesTheWeekdayWhereAMidnightLiesWithin_data()
{
    QTest::addColumn<QDateTime>("last");
    QTest::addColumn<double>("span");
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QStringList>("labels");
    const QDateTime wednesday(QDate(2026, 6, 10), QTime(14, 5));
    const QDateTime afterMidnight(QDate(2026, 6, 10), QTime(0, 5));
    QTest::newRow("a day") << wednesday << 86'400.0 << u"en_GB"_s
                           << QStringList{u"Tue 14:05"_s, u"Wed 02:05"_s, u"Wed 14:05"_s};
    QTest::newRow("a day that is counted to twelve")
        << wednesday << 86'400.0 << u"en_US"_s
        << QStringList{u"Tue 02:05"_s, u"Wed 02:05"_s, u"Wed 02:05"_s};
    QTest::newRow("an hour within a day")
        << wednesday << 3'600.0 << u"en_GB"_s << QStringList{u"13:05"_s, u"13:35"_s, u"14:05"_s};
    QTest::newRow("an hour with a midnight")
        << afterMidnight << 3'600.0 << u"en_GB"_s
        << QStringList{u"Tue 23:05"_s, u"Tue 23:35"_s, u"Wed 00:05"_s};
}

void TestChartTime::namesTheWeekdayWhereAMidnightLiesWithin()
{
    QFETCH(QDateTime, last);
    QFETCH(double, span);
    QFETCH(QString, locale);
    const double upper = double(last.toSecsSinceEpoch()) - 978'307'200;
    const auto labels = timeLabelsOfDays({upper - span, upper}, QLocale(locale));
    QTEST(QStringList(labels.begin(), labels.end()), "labels");
}

void TestChartTime::labelsFollowTheLocale_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<double>("date");
    QTest::addColumn<QString>("expected");
    constexpr double fiveToTwelve = 42'900;
    constexpr double fivePastTwo = 50'700;
    constexpr double fivePastMidnight = 300;
    QTest::newRow("Germany") << u"de_DE"_s << fivePastTwo << u"14:05"_s;
    QTest::newRow("Germany at midnight") << u"de_DE"_s << fivePastMidnight << u"00:05"_s;
    QTest::newRow("the United States count to twelve") << u"en_US"_s << fivePastTwo << u"02:05"_s;
    QTest::newRow("midnight is twelve there") << u"en_US"_s << fivePastMidnight << u"12:05"_s;
    QTest::newRow("late morning there") << u"en_US"_s << fiveToTwelve << u"11:55"_s;
    QTest::newRow("the United Kingdom") << u"en_GB"_s << fivePastTwo << u"14:05"_s;
    QTest::newRow("Japan has two digits too") << u"ja_JP"_s << fivePastMidnight << u"00:05"_s;
    QTest::newRow("Korea puts the marker first") << u"ko_KR"_s << fivePastTwo << u"02:05"_s;
    QTest::newRow("Finland has a dot") << u"fi_FI"_s << fivePastTwo << u"14.05"_s;
    QTest::newRow("Canada has a word in French") << u"fr_CA"_s << fivePastTwo << u"14 h 05"_s;
    QTest::newRow("Bulgaria's trailing word is left out")
        << u"bg_BG"_s << fivePastTwo << u"14:05"_s;
    QTest::newRow("India writes Hindi with Western digits")
        << u"hi_IN"_s << fivePastTwo << u"02:05"_s;
    QTest::newRow("Egypt writes Arabic digits")
        << u"ar_EG"_s << fivePastTwo << u"\u0660\u0662:\u0660\u0665"_s;
    QTest::newRow("no country") << u"C"_s << fivePastTwo << u"14:05"_s;
}

void TestChartTime::labelsFollowTheLocale()
{
    QFETCH(QString, locale);
    QFETCH(double, date);
    QTEST(timeLabel(date, QLocale(locale)), "expected");
}

void TestChartTime::labelsStartMiddleAndEndOfARange()
{
    const std::array<QString, 3> expected{u"14:04"_s, u"14:05"_s, u"14:07"_s};
    QVERIFY(timeLabels({50'640, 50'820}, QLocale(u"de_DE"_s)) == expected);
}

void TestChartTime::noLabelForATimeThatNoCalendarHas()
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    QCOMPARE(timeLabel(notANumber, QLocale::c()), QString());
    QCOMPARE(timeLabel(-1e300, QLocale::c()), QString());
    const std::array<QString, 3> expected{QString(), QString(), u"00:00"_s};
    QVERIFY(timeLabels({notANumber, 0}, QLocale::c()) == expected);
}

QTEST_GUILESS_MAIN(TestChartTime)
#include "tst_ChartTime.moc"
