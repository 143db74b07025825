#include "cards/HistoryChart.h"

#include <QTest>

using namespace corvane;

class TestHistoryChart : public QObject {
    Q_OBJECT

private slots:
    void spansTheFirstToTheLastTimestamp_data();
    void spansTheFirstToTheLastTimestamp();
    void hasNoSeries();
};

void TestHistoryChart::spansTheFirstToTheLastTimestamp_data()
{
    QTest::addColumn<QList<double>>("timestamps");
    QTest::addColumn<double>("lower");
    QTest::addColumn<double>("upper");
    QTest::newRow("no history") << QList<double>{} << 0.0 << 0.0;
    QTest::newRow("a single sample") << QList<double>{5} << 5.0 << 5.0;
    QTest::newRow("uneven steps") << QList<double>{5, 6, 60} << 5.0 << 60.0;
    QTest::newRow("a clock that was set back") << QList<double>{50, 51, 10} << 50.0 << 10.0;
}

void TestHistoryChart::spansTheFirstToTheLastTimestamp()
{
    QFETCH(QList<double>, timestamps);
    QFETCH(double, lower);
    QFETCH(double, upper);
    std::vector<SystemMetrics> history;
    for (const double timestamp : timestamps)
        history.push_back({.timestamp = timestamp});
    const SparklineData chart = historyChart(history);
    QCOMPARE(QList<double>(chart.timestamps.begin(), chart.timestamps.end()), timestamps);
    QCOMPARE(chart.xDomain, (ChartRange{lower, upper}));
}

void TestHistoryChart::hasNoSeries()
{
    const SparklineData chart = historyChart({{.timestamp = 1}, {.timestamp = 2}});
    QVERIFY(chart.series.empty());
    QCOMPARE(chart.stacking, Stacking::overlay);
    QVERIFY(chart.showsGrid && chart.showsTimeLabels);
}

QTEST_APPLESS_MAIN(TestHistoryChart)
#include "tst_HistoryChart.moc"
