#include "cards/MemoryBreakdown.h"
#include "ui/Theme.h"

#include <QTest>

using namespace corvane;

namespace {

double sum(const std::array<BarSegment, 4> &segments)
{
    double total = 0;
    for (const BarSegment &segment : segments)
        total += segment.fraction;
    return total;
}

} // namespace

class TestMemoryBreakdown : public QObject {
    Q_OBJECT

private slots:
    void dividesTheTotal_data();
    void dividesTheTotal();
    void fillsAtMostTheWholeBar();
};

void TestMemoryBreakdown::dividesTheTotal_data()
{
    using Fractions = QList<double>;
    QTest::addColumn<MemorySnapshot>("memory");
    QTest::addColumn<Fractions>("expected");
    QTest::newRow("app memory without wired and compressed")
        << MemorySnapshot{.total = 100, .wired = 10, .compressed = 5, .cached = 20, .appMemory = 60}
        << Fractions{0.10, 0.45, 0.05, 0.20};
    QTest::newRow("no app segment if these are larger")
        << MemorySnapshot{.total = 100, .wired = 30, .compressed = 40, .cached = 5, .appMemory = 60}
        << Fractions{0.30, 0, 0.40, 0.05};
    QTest::newRow("an excess is cut from the right") << MemorySnapshot{.total = 100,
                                                                       .wired = 30,
                                                                       .compressed = 20,
                                                                       .cached = 40,
                                                                       .appMemory = 80}
                                                     << Fractions{0.30, 0.30, 0.20, 0.20};
    QTest::newRow("then from compressed") << MemorySnapshot{.total = 100,
                                                            .wired = 60,
                                                            .compressed = 70,
                                                            .cached = 40,
                                                            .appMemory = 150}
                                          << Fractions{0.60, 0.20, 0.20, 0};
    QTest::newRow("a total of 0 counts as 1")
        << MemorySnapshot{.wired = 4096, .cached = 4096, .appMemory = 8192}
        << Fractions{1, 0, 0, 0};
    QTest::newRow("an empty snapshot") << MemorySnapshot{} << Fractions{0, 0, 0, 0};
}

void TestMemoryBreakdown::dividesTheTotal()
{
    QFETCH(MemorySnapshot, memory);
    QFETCH(QList<double>, expected);
    const std::array<BarSegment, 4> segments = breakdownSegments(memory);
    for (std::size_t i = 0; i < segments.size(); ++i)
        QVERIFY(qAbs(segments[i].fraction - expected[static_cast<qsizetype>(i)]) < 1e-12);
    QCOMPARE(segments[0].color, Theme::withOpacity(Theme::memory, 0.95));
    QCOMPARE(segments[1].color, Theme::white(0.85));
    QCOMPARE(segments[2].color, Theme::withOpacity(Theme::cpu, 0.85));
    QCOMPARE(segments[3].color, Theme::white(0.18));
}

void TestMemoryBreakdown::fillsAtMostTheWholeBar()
{
    constexpr std::uint64_t most = ~std::uint64_t(0);
    QVERIFY(sum(breakdownSegments({.total = 1, .wired = most, .compressed = most})) <= 1);
    QVERIFY(sum(breakdownSegments({.total = most, .cached = most, .appMemory = most})) <= 1);
}

QTEST_GUILESS_MAIN(TestMemoryBreakdown)
#include "tst_MemoryBreakdown.moc"
