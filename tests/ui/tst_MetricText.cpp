#include "ui/MetricText.h"

#include "ui/Theme.h"

#include <QTest>

#include <limits>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

constexpr quint64 gibibyte = quint64(1) << 30;

SystemMetrics sample(quint64 used, quint64 total, std::optional<ChipReading> chip = {})
{
    return {.memory = {.total = total, .used = used}, .chip = std::move(chip)};
}

ChipReading watts(double cpu, double gpu, double ane)
{
    return {.cpuWatts = cpu, .gpuWatts = gpu, .aneWatts = ane};
}

ChipReading gpuFraction(double fraction)
{
    return {.gpuActiveFraction = fraction};
}

} // namespace

class TestMetricText : public QObject {
    Q_OBJECT

private slots:
    void labelShowsThreeNumbers_data();
    void labelShowsThreeNumbers();
    void labelNumbersHaveTheirUnitColours();
    void labelIsInWords();
    void labelIsOneLine();
    void rowsShowValuesAndDetails_data();
    void rowsShowValuesAndDetails();
    void rowsHaveTheirUnitColours();
    void aRowIsOneLine();
    void showsADashForWhatIsDenied();
};

void TestMetricText::labelShowsThreeNumbers_data()
{
    using Chip = std::optional<ChipReading>;
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    QTest::addColumn<SystemMetrics>("current");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("24 GiB of 32 are 75 per cent")
        << sample(24 * gibibyte, 32 * gibibyte) << QStringList{u"75"_s, u"0"_s, u"0W"_s};
    QTest::newRow("memory is rounded down")
        << sample(639, 1000) << QStringList{u"63"_s, u"0"_s, u"0W"_s};
    QTest::newRow("a total of zero shows zero")
        << sample(5, 0) << QStringList{u"0"_s, u"0"_s, u"0W"_s};
    QTest::newRow("a GPU at 0.999 shows 99")
        << sample(0, 1, gpuFraction(0.999)) << QStringList{u"0"_s, u"99"_s, u"0W"_s};
    QTest::newRow("a GPU at one shows 100")
        << sample(0, 1, gpuFraction(1)) << QStringList{u"0"_s, u"100"_s, u"0W"_s};
    QTest::newRow("0.34 W show as 0W")
        << sample(0, 1, watts(0.04, 0.30, 0)) << QStringList{u"0"_s, u"0"_s, u"0W"_s};
    QTest::newRow("power is rounded")
        << sample(0, 1, watts(8, 3, 0.6)) << QStringList{u"0"_s, u"0"_s, u"12W"_s};
    QTest::newRow("no chip reading shows zeros")
        << sample(1, 2, Chip()) << QStringList{u"50"_s, u"0"_s, u"0W"_s};
    QTest::newRow("not a number shows zero")
        << sample(0, 1, gpuFraction(nan)) << QStringList{u"0"_s, u"0"_s, u"0W"_s};
    QTest::newRow("an infinite load is limited")
        << sample(0, 1, gpuFraction(infinity))
        << QStringList{u"0"_s, u"1000000000000000"_s, u"0W"_s};
}

void TestMetricText::labelShowsThreeNumbers()
{
    QFETCH(SystemMetrics, current);
    QStringList texts;
    for (const LabelNumber &number : labelNumbers(current))
        texts.append(number.text);
    QTEST(texts, "expected");
}

void TestMetricText::labelNumbersHaveTheirUnitColours()
{
    const auto numbers = labelNumbers(SystemMetrics::placeholder());
    QCOMPARE(numbers[0].color, Theme::memory);
    QCOMPARE(numbers[1].color, Theme::gpu);
    QCOMPARE(numbers[2].color, Theme::power);
}

void TestMetricText::labelIsInWords()
{
    ChipReading chip = watts(10, 30, 9.7);
    chip.gpuActiveFraction = 0.9;
    QCOMPARE(inWords(labelNumbers(sample(71, 100, chip))), u"Memory 71 %, GPU 90 %, Power 50 W"_s);
}

void TestMetricText::labelIsOneLine()
{
    const SystemMetrics current = sample(639, 1000, watts(8, 3, 0.6));
    QCOMPARE(inOneLine(labelNumbers(current)), u"63 0 12W"_s);
}

void TestMetricText::rowsShowValuesAndDetails_data()
{
    ChipReading busy{.cpuWatts = 16.694,
                     .gpuWatts = 31.62,
                     .aneWatts = 1.346,
                     .cpuActiveFraction = 0.484,
                     .gpuActiveFraction = 0.999};
    SystemMetrics full = sample(24 * gibibyte, 32 * gibibyte, busy);
    full.memory.swapTotal = 4 * gibibyte;
    full.memory.swapUsed = gibibyte + gibibyte / 4;

    QTest::addColumn<SystemMetrics>("current");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("a full sample")
        << full
        << QStringList{u"Memory: 24 GB / 32 GB, 75 %"_s, u"GPU: 100 %, 31.62 W"_s,
                       u"CPU: 48 %, 16.69 W"_s, u"ANE: 1.35 W, Neural Engine"_s,
                       u"Swap: 1.25 GB, of 4 GB"_s};
    QTest::newRow("nothing read yet")
        << SystemMetrics::placeholder()
        << QStringList{u"Memory: 0 MB / 0 MB, 0 %"_s, u"GPU: 0 %, 0.00 W"_s, u"CPU: 0 %, 0.00 W"_s,
                       u"ANE: 0.00 W, Neural Engine"_s, u"Swap: 0 MB, of 0 MB"_s};
}

void TestMetricText::rowsShowValuesAndDetails()
{
    QFETCH(SystemMetrics, current);
    QStringList lines;
    for (const MetricRow &row : metricRows(current))
        lines.append(inOneLine(row));
    QTEST(lines, "expected");
}

void TestMetricText::rowsHaveTheirUnitColours()
{
    const auto rows = metricRows(SystemMetrics::placeholder());
    QCOMPARE(rows[0].color, Theme::memory);
    QCOMPARE(rows[1].color, Theme::gpu);
    QCOMPARE(rows[2].color, Theme::cpu);
    QCOMPARE(rows[3].color, Theme::ane);
    QCOMPARE(rows[4].color, Theme::withOpacity(Theme::memory, 0.7));
}

void TestMetricText::aRowIsOneLine()
{
    QCOMPARE(inOneLine({.title = u"%1"_s, .value = u"%2"_s, .detail = u"%3"_s}), u"%1: %2, %3"_s);
}

void TestMetricText::showsADashForWhatIsDenied()
{
    ChipReading chip = watts(0, 7, 0);
    chip.denied = {.gpuLoad = true, .cpuWatts = true, .aneWatts = true};
    const SystemMetrics current = sample(24 * gibibyte, 32 * gibibyte, chip);
    QCOMPARE(inOneLine(labelNumbers(current)), u"75 – –"_s);
    QCOMPARE(inWords(labelNumbers(current)), u"Memory 75 %, GPU –, Power –"_s);
    const auto rows = metricRows(current);
    QCOMPARE(inOneLine(rows[1]), u"GPU: –, 7.00 W"_s);
    QCOMPARE(inOneLine(rows[2]), u"CPU: 0 %, –"_s);
    QCOMPARE(inOneLine(rows[3]), u"ANE: –, Neural Engine"_s);
}

QTEST_MAIN(TestMetricText)
#include "tst_MetricText.moc"
