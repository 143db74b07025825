#include "cpu/ProcStat.h"

#include "cpu/CPUCoreSampler.h"

#include <QTest>

using namespace corvane;

namespace {

using Ticks = std::vector<CoreTicks>;
using Reading = std::optional<Ticks>;

/// A column of a table: Qt asks whether its type has an order, which the vectors of Xcode 15's
/// library answer with an error where their elements have none.
struct Expected {
    Reading reading;
};

} // namespace

class TestProcStat : public QObject {
    Q_OBJECT

private slots:
    void takesLinesOfCPUs();
    void sumsColumns_data();
    void sumsColumns();
    void backwardStepsCountAsNone();
    void anOfflineCPUKeepsItsPlace();
    void aCPUThatJoinsLaterStartsFromThen();
    void keepsCountersThroughAnUnreadableReading();
    void wrapsAt32Bits();
};

void TestProcStat::takesLinesOfCPUs()
{
    std::string_view text = "cpu  9 9 9 9 9 9 9 9 0 0\n"
                            "cpu0 1 2 3 4 5 6 7 8 9 10\n"
                            "cpufreq 1 2 3 4\n"
                            "cpu7 1 2 3 4\n"
                            "intr 5 0 0\n"
                            "cpu8 1 2 3 4\n";
    const auto first = takeCPULine(text);
    QVERIFY(first);
    QCOMPARE(first->cpu, std::size_t(0));
    QVERIFY((first->times.ticks == std::array<std::uint64_t, 8>{1, 2, 3, 4, 5, 6, 7, 8}));
    const auto second = takeCPULine(text);
    QVERIFY(second);
    QCOMPARE(second->cpu, std::size_t(7));
    QVERIFY((second->times.ticks == std::array<std::uint64_t, 8>{1, 2, 3, 4}));
    QVERIFY(!takeCPULine(text)); // Lines behind the interrupts are not searched.
    QVERIFY(text.empty());
    QVERIFY(!takeCPULine(text));
}

void TestProcStat::sumsColumns_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<Expected>("expected");
    const auto row = [](const char *name, const QByteArray &text, const Reading &expected) {
        QTest::newRow(name) << text << Expected{expected};
    };
    // user; system + irq + softirq + steal; idle + iowait; nice. Guest times are in user and nice.
    row("every column once, guests left out", "cpu0 1 2 30 400 5 6 70 800 9000 90000\n",
        Reading({{.user = 1, .system = 906, .idle = 405, .nice = 2}}));
    row("a kernel without steal and guests", "cpu0 1 2 3 4 5 6 7\n",
        Reading({{.user = 1, .system = 16, .idle = 9, .nice = 2}}));
    row("a kernel that counts just four times", "cpu0 1 2 3 4\n",
        Reading({{.user = 1, .system = 3, .idle = 4, .nice = 2}}));
    row("columns that no kernel has yet", "cpu0 1 2 3 4 0 0 0 0 0 0 7 8 9\n",
        Reading({{.user = 1, .system = 3, .idle = 4, .nice = 2}}));
    row("no last line feed", "cpu0 1 2 3 4",
        Reading({{.user = 1, .system = 3, .idle = 4, .nice = 2}}));
    row("a gap where a CPU is offline", "cpu0 1 0 0 0\ncpu2 3 0 0 0\n",
        Reading({{.user = 1}, {}, {.user = 3}}));
    row("CPUs out of order", "cpu1 2 0 0 0\ncpu0 1 0 0 0\n", Reading({{.user = 1}, {.user = 2}}));
    row("the sum of all is no CPU", "cpu  1 2 3 4\n", Reading());
    row("too few columns", "cpu0 1 2 3\n", Reading());
    row("a column that does not parse", "cpu0 1 2 x 4\ncpu1 1 0 0 0\n", Reading({{}, {.user = 1}}));
    row("a negative column", "cpu0 1 2 -3 4\n", Reading());
    row("a number beyond 64 bits", "cpu0 99999999999999999999 2 3 4\n", Reading());
    row("a CPU number that no kernel has", "cpu4294967296 1 2 3 4\n", Reading());
    row("a CPU number that is negative", "cpu-1 1 2 3 4\n", Reading());
    row("CPUs behind other lines are not read", "intr 1\ncpu0 1 2 3 4\n", Reading());
    row("an empty line ends the CPUs", "\ncpu0 1 2 3 4\n", Reading());
    row("no text", QByteArray(), Reading());
    row("NULs", QByteArray(64, '\0'), Reading());
}

void TestProcStat::sumsColumns()
{
    QFETCH(QByteArray, text);
    CPUTickCounters counters;
    QFETCH(Expected, expected);
    QCOMPARE(counters.update({text.constData(), std::size_t(text.size())}), expected.reading);
}

void TestProcStat::backwardStepsCountAsNone()
{
    CPUTickCounters counters;
    counters.update("cpu0 10 0 0 100 50\n");
    // iowait runs back by 10 while idle gains 5: only the gain counts.
    QCOMPARE(counters.update("cpu0 10 0 0 105 40\n"), Reading({{.user = 10, .idle = 155}}));
    // From 40 on it counts again.
    QCOMPARE(counters.update("cpu0 10 0 0 105 43\n"), Reading({{.user = 10, .idle = 158}}));
    QCOMPARE(counters.update("cpu0 0 0 0 0 0\n"), Reading({{.user = 10, .idle = 158}}));
    QCOMPARE(counters.update("cpu0 1 0 0 0 0\n"), Reading({{.user = 11, .idle = 158}}));
}

void TestProcStat::anOfflineCPUKeepsItsPlace()
{
    CPUTickCounters counters;
    CPUCoreSampler sampler([&counters, reading = 0]() mutable {
        constexpr std::array readings{"cpu0 10 0 0 10\ncpu1 10 0 0 10\ncpu2 10 0 0 10\n",
                                      "cpu0 20 0 0 10\ncpu2 10 0 0 20\n",
                                      "cpu0 20 0 0 20\ncpu1 11 0 0 13\ncpu2 15 0 0 25\n"};
        return counters.update(readings.at(std::size_t(reading++)));
    });
    using Fractions = std::vector<double>;
    QCOMPARE(sampler.sample(), Fractions({0, 0, 0}));
    QCOMPARE(sampler.sample(), Fractions({1, 0, 0}));
    QCOMPARE(sampler.sample(), Fractions({0, 0.25, 0.5})); // Back, with 1 busy tick of 4.
}

void TestProcStat::aCPUThatJoinsLaterStartsFromThen()
{
    CPUTickCounters counters;
    QCOMPARE(counters.update("cpu0 10 0 0 10\ncpu2 7 0 0 7\n"),
             Reading({{.user = 10, .idle = 10}, {}, {.user = 7, .idle = 7}}));
    // Its first 900 ticks, in the gap or at the end, are not counted for the last second.
    const Reading joined({{.user = 10, .idle = 10}, {}, {.user = 7, .idle = 7}, {}});
    QCOMPARE(counters.update("cpu0 10 0 0 10\ncpu1 900 0 0 100\ncpu2 7 0 0 7\ncpu3 900 0 0 9\n"),
             joined);
    QCOMPARE(counters.update("cpu0 10 0 0 10\ncpu1 903 0 0 101\ncpu2 7 0 0 7\ncpu3 901 0 0 9\n"),
             Reading({{.user = 10, .idle = 10},
                      {.user = 3, .idle = 1},
                      {.user = 7, .idle = 7},
                      {.user = 1}}));
}

void TestProcStat::keepsCountersThroughAnUnreadableReading()
{
    CPUTickCounters counters;
    counters.update("cpu0 10 0 0 10\n");
    QVERIFY(!counters.update(""));
    QVERIFY(!counters.update("cpu0 garbage\n"));
    QCOMPARE(counters.update("cpu0 11 0 0 12\n"), Reading({{.user = 11, .idle = 12}}));
}

void TestProcStat::wrapsAt32Bits()
{
    CPUTickCounters counters;
    QCOMPARE(counters.update("cpu0 4294967290 0 0 4294967296\n"),
             Reading({{.user = 4'294'967'290, .idle = 0}}));
    QCOMPARE(counters.update("cpu0 4294967301 0 0 4294967299\n"),
             Reading({{.user = 5, .idle = 3}}));
}

QTEST_APPLESS_MAIN(TestProcStat)
#include "tst_ProcStat.moc"
