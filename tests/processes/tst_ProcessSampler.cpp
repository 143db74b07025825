#include "processes/ProcessSampler.h"

#include "support/DyingChild.h"

#include <QTest>

#include <limits>

using namespace corvane;

using Records = std::vector<ProcessRecord>;
using Rows = std::vector<ProcessRow>;

Q_DECLARE_METATYPE(Records)
Q_DECLARE_METATYPE(Rows)

class TestProcessSampler : public QObject {
    Q_OBJECT

private slots:
    void makesRows_data();
    void makesRows();
    void listsAtMostTheRequestedNumber();
    void stopsAtANumberBeyond32Bits_data();
    void stopsAtANumberBeyond32Bits();
};

void TestProcessSampler::makesRows_data()
{
    QTest::addColumn<Records>("records");
    QTest::addColumn<Rows>("expected");
    const auto name = QStringLiteral("ollama");
    QTest::newRow("none") << Records{} << Rows{};
    QTest::newRow("in the records' order")
        << Records{{9, "ollama", 30}, {7, "python3", 40}}
        << Rows{{9, name, 30}, {7, QStringLiteral("python3"), 40}};
    QTest::newRow("without a number")
        << Records{{{}, "a", 1}, {9, "ollama", 30}} << Rows{{9, name, 30}};
    QTest::newRow("without a name")
        << Records{{8, {}, 1}, {9, "ollama", 30}} << Rows{{9, name, 30}};
    QTest::newRow("without memory")
        << Records{{8, "a", {}}, {9, "ollama", 30}} << Rows{{9, name, 30}};
    QTest::newRow("the largest values")
        << Records{{std::numeric_limits<std::int32_t>::max(), "grün",
                    std::numeric_limits<std::uint64_t>::max()}}
        << Rows{{std::numeric_limits<std::int32_t>::max(), QStringLiteral("grün"),
                 std::numeric_limits<std::uint64_t>::max()}};
}

void TestProcessSampler::makesRows()
{
    QFETCH(Records, records);
    std::int32_t asked = 0;
    const auto ranking = [&](std::int32_t limit) {
        asked = limit;
        return records;
    };
    QTEST(ProcessSampler::topByRAM(20, ranking), "expected");
    QCOMPARE(asked, 20);
}

void TestProcessSampler::listsAtMostTheRequestedNumber()
{
    QCOMPARE(ProcessSampler::topByRAM(0), Rows());
    QCOMPARE(ProcessSampler::topByRAM(-5), Rows());
    QCOMPARE(ProcessSampler::topByRAM(1).size(), std::size_t(1));
}

void TestProcessSampler::stopsAtANumberBeyond32Bits_data()
{
    QTest::addColumn<qint64>("n");
    QTest::newRow("one too large") << qint64(1) + std::numeric_limits<std::int32_t>::max();
    QTest::newRow("one too small") << qint64(-1) + std::numeric_limits<std::int32_t>::min();
}

void TestProcessSampler::stopsAtANumberBeyond32Bits()
{
    QFETCH(qint64, n);
    QVERIFY(test::aborts([n] { ProcessSampler::topByRAM(n); }));
}

QTEST_APPLESS_MAIN(TestProcessSampler)
#include "tst_ProcessSampler.moc"
