#include "records/SystemMetrics.h"

#include "records/ReferenceDate.h"
#include "support/Snapshots.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

class TestSystemMetrics : public QObject {
    Q_OBJECT

private slots:
    void placeholderHasNoMemoryAndNoChip();
    void everyRecordHasAnIdOfItsOwn();
    void wattsAreSummed();
    void usedPercentOf_data();
    void usedPercentOf();
    void pressureIsStoredByNumber();
};

void TestSystemMetrics::placeholderHasNoMemoryAndNoChip()
{
    const double before = secondsSince2001();
    const SystemMetrics &placeholder = SystemMetrics::placeholder();
    const double after = secondsSince2001();
    QVERIFY(placeholder.timestamp >= before && placeholder.timestamp <= after);
    QVERIFY(!placeholder.id.isNull());
    QCOMPARE(described(placeholder.memory), described(MemorySnapshot()));
    QVERIFY(placeholder.memory.pressure == MemoryPressure::normal);
    QVERIFY(!placeholder.chip);
    QCOMPARE(usedPercent(placeholder.memory), 0.0);

    QCOMPARE(&SystemMetrics::placeholder(), &placeholder);
    QVERIFY(SystemMetrics::placeholder().timestamp <= after);
}

void TestSystemMetrics::everyRecordHasAnIdOfItsOwn()
{
    const SystemMetrics first;
    const SystemMetrics second;
    QVERIFY(!first.id.isNull());
    QVERIFY(first.id != second.id);
    QVERIFY(first.id != SystemMetrics::placeholder().id);
    QCOMPARE(first.id.version(), QUuid::Random);
}

void TestSystemMetrics::wattsAreSummed()
{
    QCOMPARE(totalWatts(std::nullopt), 0.0);
    QCOMPARE(totalWatts(ChipReading()), 0.0);
    const ChipReading known{.cpuWatts = 4, .gpuWatts = 8.5, .aneWatts = 0.25};
    QCOMPARE(totalWatts(known), 12.75);
    QCOMPARE(shownTotalWatts(known), std::optional(12.75));
    QCOMPARE(shownTotalWatts(std::nullopt), std::optional(0.0));
    for (const DeniedParts denied :
         {DeniedParts{.cpuWatts = true}, {.gpuWatts = true}, {.aneWatts = true}}) {
        ChipReading partly = known;
        partly.denied = denied;
        QVERIFY(!shownTotalWatts(partly)); // The sum of the rest would be too low.
    }
}

void TestSystemMetrics::usedPercentOf_data()
{
    QTest::addColumn<quint64>("used");
    QTest::addColumn<quint64>("total");
    QTest::addColumn<double>("expected");
    QTest::newRow("half") << quint64(8) << quint64(16) << 50.0;
    QTest::newRow("all") << quint64(16) << quint64(16) << 100.0;
    QTest::newRow("nothing") << quint64(0) << quint64(16) << 0.0;
    QTest::newRow("a total of 0 is not divided by") << quint64(0) << quint64(0) << 0.0;
    QTest::newRow("use without a total is 0 %") << quint64(5) << quint64(0) << 0.0;
    QTest::newRow("counts beyond 2^53") << (quint64(1) << 62) << (quint64(1) << 63) << 50.0;
}

void TestSystemMetrics::usedPercentOf()
{
    QFETCH(quint64, used);
    QFETCH(quint64, total);
    QTEST(usedPercent(MemorySnapshot{.total = total, .used = used}), "expected");
}

void TestSystemMetrics::pressureIsStoredByNumber()
{
    QCOMPARE(static_cast<int>(MemoryPressure::normal), 0);
    QCOMPARE(static_cast<int>(MemoryPressure::warning), 1);
    QCOMPARE(static_cast<int>(MemoryPressure::critical), 2);
}

QTEST_APPLESS_MAIN(TestSystemMetrics)
#include "tst_SystemMetrics.moc"
