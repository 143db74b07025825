#include "ui/EnergyText.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// 412 Wh today in 7 h 12 min, on the last of two days.
EnergyReport report()
{
    const Energy today{.seconds = 25'920, .all = 412 * 3'600, .cpu = 200 * 3'600, .npu = 1'800};
    return {.sinceStart = {.seconds = 59, .all = 3'600, .cpu = 3'600},
            .days = {{QDate(2026, 6, 9), {}}, {QDate(2026, 6, 10), today}}};
}

} // namespace

class TestEnergyText : public QObject {
    Q_OBJECT

private slots:
    void wattHours_data();
    void wattHours();
    void durations_data();
    void durations();
    void tellsToday();
    void tellsNothingWhereNothingWasMeasured();
    void tellsTheParts();
    void hasATableOfTheDays();
};

void TestEnergyText::wattHours_data()
{
    QTest::addColumn<double>("joules");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << 0.0 << u"0.00 Wh"_s;
    QTest::newRow("less than ten") << 0.42 * 3'600 << u"0.42 Wh"_s;
    QTest::newRow("nearly ten") << 9.996 * 3'600 << u"10.0 Wh"_s;
    QTest::newRow("less than a hundred") << 41.23 * 3'600 << u"41.2 Wh"_s;
    QTest::newRow("nearly a hundred") << 99.96 * 3'600 << u"100 Wh"_s;
    QTest::newRow("hundreds") << 412.4 * 3'600 << u"412 Wh"_s;
    QTest::newRow("thousands") << 9'999.0 * 3'600 << u"9999 Wh"_s;
    QTest::newRow("ten kilowatt-hours") << 12'345.0 * 3'600 << u"12.3 kWh"_s;
}

void TestEnergyText::wattHours()
{
    QFETCH(double, joules);
    QTEST(energyText(joules), "text");
}

void TestEnergyText::durations_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<QString>("text");
    QTest::newRow("nothing") << 0.0 << u"0 s"_s;
    QTest::newRow("less than a minute") << 59.99 << u"59 s"_s;
    QTest::newRow("a minute") << 60.0 << u"1 min"_s;
    QTest::newRow("less than an hour") << 3'599.0 << u"59 min"_s;
    QTest::newRow("an hour") << 3'600.0 << u"1 h 0 min"_s;
    QTest::newRow("a day") << 25'920.0 << u"7 h 12 min"_s;
}

void TestEnergyText::durations()
{
    QFETCH(double, seconds);
    QTEST(durationText(seconds), "text");
}

void TestEnergyText::tellsToday()
{
    QCOMPARE(energyTodayText(report()), u"412 Wh today, 7 h 12 min measured"_s);
    QCOMPARE(shortEnergyText(report()), u"412 Wh today"_s);
}

void TestEnergyText::tellsNothingWhereNothingWasMeasured()
{
    const EnergyReport nothing{.days = {{QDate(2026, 6, 10), {}}}};
    for (const EnergyReport &report : {nothing, EnergyReport()}) {
        QCOMPARE(energyTodayText(report), QString());
        QCOMPARE(shortEnergyText(report), QString());
        QCOMPARE(energyTip(report, u"NPU"_s), QString());
        QCOMPARE(energyMarkdown(report, u"NPU"_s), QString());
    }
}

void TestEnergyText::tellsTheParts()
{
    QCOMPARE(energyTip(report(), u"ANE"_s),
             u"412 Wh today, 7 h 12 min measured: CPU 200 Wh, ANE 0.50 Wh\n"
             "1.00 Wh since the start, 59 s measured: CPU 1.00 Wh"_s);
}

void TestEnergyText::hasATableOfTheDays()
{
    EnergyReport week = report();
    // Before it is a day of which nothing is known.
    week.days.insert(week.days.begin(), {QDate(2026, 6, 8), week.today()});
    week.days.insert(week.days.begin(), {QDate(2026, 6, 7), {}});
    const QString text = energyMarkdown(week, u"NPU"_s);
    QVERIFY(text.startsWith(u"**Energy**: 412\u00a0Wh today, 7\u00a0h\u00a012\u00a0min "
                            "measured: CPU\u00a0200\u00a0Wh, "_s));
    const QStringList rows = text.section(u"\n\n"_s, 1).split(u'\n');
    QCOMPARE(rows.size(), 3);
    QCOMPARE(rows[0].simplified(), u"`Mon 08 Jun 412 Wh 7 h 12 min`"_s);
    QCOMPARE(rows[1].simplified(), u"`Tue 09 Jun – –`"_s);
    QCOMPARE(rows[2].simplified(), u"`Wed 10 Jun 412 Wh 7 h 12 min`"_s);
    QCOMPARE(rows[1].size(), rows[2].size()); // One column below the other.
}

QTEST_APPLESS_MAIN(TestEnergyText)
#include "tst_EnergyText.moc"
