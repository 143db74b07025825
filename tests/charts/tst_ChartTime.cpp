#include "charts/ChartTime.h"

#include <QTest>

#include <limits>

using namespace corvane;
using namespace Qt::StringLiterals;

class TestChartTime : public QObject {
    Q_OBJECT

private slots:
    void initTestCase() { qputenv("TZ", "UTC"); }
    void labelsFollowTheLocale_data();
    void labelsFollowTheLocale();
    void labelsStartMiddleAndEndOfARange();
    void noLabelForATimeThatNoCalendarHas();
};

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
