#include "ui/MachineText.h"

#include "gallery/ScriptedMachines.h"
#include "gallery/ScriptedSamples.h"
#include "ui/Theme.h"

#include <QTest>

#include <limits>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

/// One card with what `change` makes of it.
SystemMetrics oneCardWith(const std::function<void(GPUCoverage &, GPUMetrics &)> &change)
{
    return changed(oneCardMinute().current(), [&](MachineCoverage &coverage, ChipReading &chip) {
        change(coverage.gpus[0], chip.gpus[0]);
    });
}

/// The same where its coverage alone is different and nothing of it could be read.
SystemMetrics oneCardDenied(Coverage reason)
{
    return changed(oneCardMinute().current(), [&](MachineCoverage &coverage, ChipReading &chip) {
        coverage.gpus[0].load = coverage.gpus[0].watts = coverage.gpus[0].memory = reason;
        chip.gpus.clear();
    });
}

SystemMetrics fourCardsWith(const std::function<void(MachineCoverage &, ChipReading &)> &change)
{
    return changed(fourCardsMinute().current(), change);
}

QStringList linesOf(const SystemMetrics &current)
{
    QStringList lines;
    for (const MetricRow &row : metricRows(current))
        lines.append(inOneLine(row));
    return lines;
}

} // namespace

class TestMachineText : public QObject {
    Q_OBJECT

private slots:
    void labelShowsWhatTheMachineHas_data();
    void labelShowsWhatTheMachineHas();
    void labelNumbersHaveTheirColours();
    void rowsShowWhatTheMachineHas_data();
    void rowsShowWhatTheMachineHas();
    void rowsHaveTheirColours();
    void powerNamesItsParts_data();
    void powerNamesItsParts();
    void hostileValuesStayInTheirPlaces_data();
    void hostileValuesStayInTheirPlaces();
};

void TestMachineText::labelShowsWhatTheMachineHas_data()
{
    QTest::addColumn<SystemMetrics>("current");
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("words");
    QTest::newRow("one graphics card") << oneCardMinute().current() << u"19 90 97 318W"_s
                                       << u"Memory 19 %, VRAM 90 %, GPU 97 %, GPU power 318 W"_s;
    QTest::newRow("an integrated GPU's memory is not in the label")
        << apuMinute().current() << u"62 88 41W"_s << u"Memory 62 %, GPU 88 %, Power 41 W"_s;
    QTest::newRow("several cards are one number each")
        << fourCardsMinute().current() << u"24 57 62 836W"_s
        << u"Memory 24 %, VRAM 57 %, GPU 62 %, Power 836 W"_s;
    QTest::newRow("an integrated GPU stands in for a sleeping card")
        << sleepingCardMinute().current() << u"25 zz 6 –"_s
        << u"Memory 25 %, VRAM asleep, Integrated GPU 6 %, Power –"_s;
    QTest::newRow("the CPU is last where there are no watts")
        << integratedOnlyMinute().current() << u"84 14 64"_s
        << u"Memory 84 %, GPU 14 %, CPU 64 %"_s;
    QTest::newRow("a virtual machine")
        << virtualMachineMinute().current() << u"20 57"_s << u"Memory 20 %, CPU 57 %"_s;
    QTest::newRow("a card that sleeps alone") << oneCardDenied(Coverage::asleep) << u"19 zz zz –"_s
                                              << u"Memory 19 %, VRAM asleep, GPU asleep, Power –"_s;
    QTest::newRow("an updated driver")
        << oneCardDenied(Coverage::newDriver) << u"19 – – –"_s
        << u"Memory 19 %, VRAM: restart needed, GPU: restart needed, Power –"_s;
    QTest::newRow("a missing library")
        << oneCardDenied(Coverage::noLibrary) << u"19 – – –"_s
        << u"Memory 19 %, VRAM: driver library missing, GPU: driver library missing, Power –"_s;
    QTest::newRow("a driver that publishes nothing but the card's memory")
        << oneCardDenied(Coverage::unpublished) << u"19 – – 23"_s
        << u"Memory 19 %, VRAM: not published, GPU: not published, CPU 23 %"_s;
    QTest::newRow("a driver that publishes nothing") << changed(
        oneCardMinute().current(), [](MachineCoverage &coverage, ChipReading &chip) {
            coverage.gpus = {{.device = u"0000:01:00.0"_s, .name = u"A card"_s}};
            chip.gpus.clear();
        }) << u"19 – 23"_s << u"Memory 19 %, GPU: not published, CPU 23 %"_s;
    QTest::newRow("a value that is missing in one sample")
        << oneCardWith([](GPUCoverage &, GPUMetrics &gpu) { gpu = {.device = gpu.device}; })
        << u"19 – – –"_s << u"Memory 19 %, VRAM –, GPU –, Power –"_s;
    QTest::newRow("true zeros") << oneCardWith([](GPUCoverage &, GPUMetrics &gpu) {
        gpu.activeFraction = 0;
        gpu.watts = 0;
        gpu.memoryUsed = 0;
    }) << u"19 0 0 0W"_s << u"Memory 19 %, VRAM 0 %, GPU 0 %, GPU power 0 W"_s;
    QTest::newRow("a lower bound of VRAM")
        << oneCardWith([](GPUCoverage &, GPUMetrics &gpu) { gpu.memoryIsLowerBound = true; })
        << u"19 ≥90 97 318W"_s << u"Memory 19 %, VRAM at least 90 %, GPU 97 %, GPU power 318 W"_s;
    QTest::newRow("VRAM in use of a card whose size is not known")
        << oneCardWith([](GPUCoverage &coverage, GPUMetrics &gpu) {
               coverage.memoryTotal.reset();
               gpu.memoryUsed = gibibytes(5.2);
           })
        << u"19 – 97 318W"_s << u"Memory 19 %, VRAM 5.2 GB, GPU 97 %, GPU power 318 W"_s;
    QTest::newRow("one of four cards asleep")
        << fourCardsWith([](MachineCoverage &coverage, ChipReading &chip) {
               coverage.gpus[3].load = coverage.gpus[3].memory = coverage.gpus[3].watts =
                   Coverage::asleep;
               chip.gpus.pop_back();
           })
        << u"24 77 82 814W"_s
        << u"Memory 24 %, VRAM 77 %, GPU 82 %, Power without some GPUs 814 W"_s;
    QTest::newRow("a card beside an integrated GPU, which does not count") << changed(
        oneCardMinute().current(), [](MachineCoverage &coverage, ChipReading &chip) {
            const SystemMetrics other = integratedOnlyMinute().current();
            coverage.gpus.push_back(coverageOf(other).gpus[0]);
            chip.gpus.push_back(other.chip->gpus[0]);
        }) << u"19 90 97 318W"_s << u"Memory 19 %, VRAM 90 %, GPU 97 %, GPU power 318 W"_s;
}

void TestMachineText::labelShowsWhatTheMachineHas()
{
    QFETCH(SystemMetrics, current);
    const LabelNumbers numbers = labelNumbers(current);
    QTEST(inOneLine(numbers), "text");
    QTEST(inWords(numbers), "words");
}

void TestMachineText::labelNumbersHaveTheirColours()
{
    const LabelNumbers awake = labelNumbers(oneCardMinute().current());
    QCOMPARE(awake[0].color, Theme::memory);
    QCOMPARE(awake[1].color, Theme::gpu);
    QCOMPARE(awake[2].color, Theme::gpu);
    QCOMPARE(awake[3].color, Theme::power);
    const LabelNumbers asleep = labelNumbers(sleepingCardMinute().current());
    QCOMPARE(asleep[1].color, Theme::withOpacity(Theme::gpu, 0.65));
    QCOMPARE(asleep[2].color, Theme::gpu);
    QCOMPARE(asleep[3].color, Theme::withOpacity(Theme::power, 0.65));
    QCOMPARE(labelNumbers(virtualMachineMinute().current())[1].color, Theme::cpu);
}

void TestMachineText::rowsShowWhatTheMachineHas_data()
{
    QTest::addColumn<SystemMetrics>("current");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("one graphics card")
        << oneCardMinute().current()
        << QStringList{u"Memory: 11.94 GB / 62.72 GB, 19 %"_s, u"VRAM: 21.59 GB / 23.99 GB, 90 %"_s,
                       u"GPU: 97 %, 318.42 W"_s, u"CPU: 23 %, 4.32 GHz"_s,
                       u"Swap: 0 MB, of 8 GB"_s};
    QTest::newRow("an APU with NPU") << apuMinute().current()
                                     << QStringList{u"Memory: 19.27 GB / 30.62 GB, 63 %"_s,
                                                    u"GPU Memory: 10.96 GB / 15.81 GB, 69 %"_s,
                                                    u"GPU: 88 %, 21.63 W"_s,
                                                    u"CPU: 31 %, 9.84 W"_s,
                                                    u"NPU: 17 %, 1.35 W"_s,
                                                    u"Swap: 214.5 MB, of 8 GB"_s};
    QTest::newRow("four graphics cards")
        << fourCardsMinute().current()
        << QStringList{u"Memory: 61.38 GB / 251.57 GB, 24 %"_s,
                       u"VRAM: 111.29 GB / 191.96 GB, 58 %"_s, u"GPU: 62 %, 94 · 93 · 61 · 0 %"_s,
                       u"CPU: 18 %, 96.40 W"_s, u"Swap: off"_s};
    QTest::newRow("a card asleep")
        << sleepingCardMinute().current()
        << QStringList{u"Memory: 7.93 GB / 31.06 GB, 26 %"_s, u"VRAM: asleep, 6 GB"_s,
                       u"GPU: 6 %, 0.45 GHz · integrated"_s, u"CPU: 9 %, 1.94 GHz"_s,
                       u"Swap: 0 MB, of 8 GB"_s};
    QTest::newRow("an integrated GPU without watts")
        << integratedOnlyMinute().current()
        << QStringList{u"Memory: 12.88 GB / 15.31 GB, 84 %"_s, u"GPU: 14 %, 0.60 GHz"_s,
                       u"CPU: 64 %, watts locked · 82 °C"_s, u"Swap: 2.87 GB, of 7.65 GB"_s};
    QTest::newRow("a virtual machine")
        << virtualMachineMinute().current()
        << QStringList{u"Memory: 4.71 GB / 23.54 GB, 20 %"_s, u"CPU: 58 %, 2.30 GHz nominal"_s,
                       u"Swap: off"_s};
    QTest::newRow("an updated driver")
        << oneCardDenied(Coverage::newDriver)
        << QStringList{u"Memory: 11.94 GB / 62.72 GB, 19 %"_s,
                       u"VRAM: – / 23.99 GB, restart needed"_s, u"GPU: –, restart needed"_s,
                       u"CPU: 23 %, 4.32 GHz"_s, u"Swap: 0 MB, of 8 GB"_s};
    QTest::newRow("a card that sleeps alone")
        << oneCardDenied(Coverage::asleep)
        << QStringList{u"Memory: 11.94 GB / 62.72 GB, 19 %"_s, u"VRAM: asleep, 23.99 GB"_s,
                       u"GPU: asleep, left asleep"_s, u"CPU: 23 %, 4.32 GHz"_s,
                       u"Swap: 0 MB, of 8 GB"_s};
    QTest::newRow("a lower bound of VRAM, without watts of the card")
        << oneCardWith([](GPUCoverage &coverage, GPUMetrics &gpu) {
               coverage.watts = Coverage::unpublished;
               gpu.watts.reset();
               gpu.memoryIsLowerBound = true;
           })
        << QStringList{u"Memory: 11.94 GB / 62.72 GB, 19 %"_s,
                       u"VRAM: ≥ 21.59 GB / 23.99 GB, ≥ 90 %"_s, u"GPU: 97 %, 2.61 GHz"_s,
                       u"CPU: 23 %, watts locked · 61 °C"_s, u"Swap: 0 MB, of 8 GB"_s};
    QTest::newRow("one of four cards asleep, one unreadable")
        << fourCardsWith([](MachineCoverage &coverage, ChipReading &chip) {
               coverage.gpus[3].load = coverage.gpus[3].memory = Coverage::asleep;
               chip.gpus[2].activeFraction.reset();
               chip.gpus.pop_back();
           })
        << QStringList{u"Memory: 61.38 GB / 251.57 GB, 24 %"_s,
                       u"VRAM: 111 GB / 143.97 GB, 77 % · 1 asleep"_s,
                       u"GPU: 94 %, 94 · 93 · – · zz %"_s, u"CPU: 18 %, 96.40 W"_s, u"Swap: off"_s};
    QTest::newRow("sixteen cards")
        << fourCardsWith([](MachineCoverage &coverage, ChipReading &) {
               const auto four = coverage.gpus;
               for (int times = 1; times < 4; ++times)
                   coverage.gpus.insert(coverage.gpus.end(), four.begin(), four.end());
           })
        << QStringList{u"Memory: 61.38 GB / 251.57 GB, 24 %"_s,
                       u"VRAM: 445.16 GB / 767.84 GB, 58 %"_s, u"GPU: 62 %, 16 GPUs: 0 to 94 %"_s,
                       u"CPU: 18 %, 96.40 W"_s, u"Swap: off"_s};
    QTest::newRow("an NPU whose load is not published")
        << changed(virtualMachineMinute().current(),
                   [](MachineCoverage &coverage, ChipReading &chip) {
                       coverage.npuLoad = Coverage::unpublished;
                       chip.npu.reset();
                   })
        << QStringList{u"Memory: 4.71 GB / 23.54 GB, 20 %"_s, u"CPU: 58 %, 2.30 GHz nominal"_s,
                       u"NPU: –, load not published"_s, u"Swap: off"_s};
    QTest::newRow("an NPU that tells its clock and no watts")
        << changed(virtualMachineMinute().current(),
                   [](MachineCoverage &coverage, ChipReading &chip) {
                       coverage.npuLoad = Coverage::known;
                       chip.npu = {.activeFraction = 0, .megahertz = 950};
                   })
        << QStringList{u"Memory: 4.71 GB / 23.54 GB, 20 %"_s, u"CPU: 58 %, 2.30 GHz nominal"_s,
                       u"NPU: 0 %, 0.95 GHz"_s, u"Swap: off"_s};
    QTest::newRow("a CPU that tells nothing but its load") << changed(
        virtualMachineMinute().current(), [](MachineCoverage &coverage, ChipReading &) {
            coverage.cpuFrequency = Coverage::absent;
        }) << QStringList{u"Memory: 4.71 GB / 23.54 GB, 20 %"_s, u"CPU: 58 %"_s, u"Swap: off"_s};
}

void TestMachineText::rowsShowWhatTheMachineHas()
{
    QFETCH(SystemMetrics, current);
    QTEST(linesOf(current), "expected");
}

void TestMachineText::rowsHaveTheirColours()
{
    QList<QColor> colors;
    for (const MetricRow &row : metricRows(apuMinute().current()))
        colors.append(row.color);
    QCOMPARE(colors,
             (QList<QColor>{Theme::memory, Theme::gpu, Theme::gpu, Theme::cpu, Theme::ane,
                            Theme::withOpacity(Theme::memory, 0.7)}));
}

void TestMachineText::powerNamesItsParts_data()
{
    QTest::addColumn<SystemMetrics>("current");
    QTest::addColumn<QString>("watts");
    QTest::addColumn<QString>("parts");
    QTest::newRow("one card, the CPU locked")
        << oneCardMinute().current() << u"318.4 W"_s << u"GPU only"_s;
    QTest::newRow("several cards, the CPU locked") << fourCardsWith(
        [](MachineCoverage &coverage, ChipReading &) { coverage.cpuWatts = Coverage::locked; })
                                                   << u"739.1 W"_s << u"GPUs only"_s;
    QTest::newRow("CPU and all cards") << fourCardsMinute().current() << u"835.5 W"_s << QString();
    QTest::newRow("the whole package, which is more than its parts")
        << apuMinute().current() << u"41.2 W"_s << QString();
    QTest::newRow("the parts of a package that is not told") << changed(
        apuMinute().current(), [](MachineCoverage &coverage, ChipReading &chip) {
            coverage.packageWatts = Coverage::absent;
            chip.packageWatts.reset();
        }) << u"32.8 W"_s << QString();
    const auto withoutPackage = [](MachineCoverage &coverage, ChipReading &chip) {
        coverage.cpuWatts = Coverage::locked;
        coverage.packageWatts = Coverage::absent;
        chip.packageWatts.reset();
    };
    QTest::newRow("a GPU and an NPU that tell theirs, the CPU locked")
        << changed(apuMinute().current(), withoutPackage) << u"23.0 W"_s << u"GPU and NPU"_s;
    QTest::newRow("an NPU alone") << changed(
        apuMinute().current(), [withoutPackage](MachineCoverage &coverage, ChipReading &chip) {
            withoutPackage(coverage, chip);
            coverage.gpus[0].watts = Coverage::unpublished;
        }) << u"1.4 W"_s << u"NPU only"_s;
    QTest::newRow("a package beside a card") << changed(
        oneCardMinute().current(), [](MachineCoverage &coverage, ChipReading &chip) {
            coverage.packageWatts = Coverage::known;
            chip.packageWatts = 41.6;
        }) << u"360.0 W"_s << QString();
    QTest::newRow("a CPU beside a sleeping card") << changed(
        sleepingCardMinute().current(), [](MachineCoverage &coverage, ChipReading &chip) {
            coverage.cpuWatts = Coverage::known;
            chip.denied.cpuWatts = false;
            chip.cpuWatts = 4.5;
        }) << u"4.5 W"_s << u"CPU only"_s;
    QTest::newRow("a CPU beside cards of which one tells nothing")
        << fourCardsWith([](MachineCoverage &coverage, ChipReading &) {
               coverage.gpus[0].watts = Coverage::unpublished;
           })
        << u"567.3 W"_s << u"not all GPUs"_s;
    QTest::newRow("everything asleep")
        << sleepingCardMinute().current() << u"–"_s << u"nothing to read"_s;
    QTest::newRow("no watts at all") << integratedOnlyMinute().current() << QString() << QString();
    QTest::newRow("a virtual machine")
        << virtualMachineMinute().current() << QString() << QString();
    QTest::newRow("the watts of the whole machine are not those of its parts") << changed(
        virtualMachineMinute().current(), [](MachineCoverage &coverage, ChipReading &chip) {
            coverage.systemWatts = Coverage::known;
            chip.systemWatts = 23;
        }) << QString() << QString();
}

void TestMachineText::powerNamesItsParts()
{
    QFETCH(SystemMetrics, current);
    const PowerText power = powerText(current);
    QTEST(power.watts, "watts");
    QTEST(power.parts, "parts");
}

void TestMachineText::hostileValuesStayInTheirPlaces_data()
{
    static constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    static constexpr double infinity = std::numeric_limits<double>::infinity();
    QTest::addColumn<SystemMetrics>("current");
    QTest::addColumn<QString>("expected");
    QTest::newRow("numbers that are none count as missing")
        << oneCardWith([](GPUCoverage &, GPUMetrics &gpu) {
               gpu.activeFraction = nan;
               gpu.watts = infinity;
           })
        << u"19 90 – –"_s;
    QTest::newRow("more memory in use than there is")
        << oneCardWith([](GPUCoverage &, GPUMetrics &gpu) {
               gpu.memoryUsed = std::numeric_limits<std::uint64_t>::max();
           })
        << u"19 100 97 318W"_s;
    QTest::newRow("sums beyond 64 bits")
        << fourCardsWith([](MachineCoverage &coverage, ChipReading &chip) {
               for (std::size_t i = 0; i < 4; ++i) {
                   coverage.gpus[i].memoryTotal = std::numeric_limits<std::uint64_t>::max();
                   chip.gpus[i].memoryUsed = std::numeric_limits<std::uint64_t>::max() / 2;
               }
           })
        << u"24 100 62 836W"_s;
    QTest::newRow("a card without memory")
        << oneCardWith([](GPUCoverage &coverage, GPUMetrics &) { coverage.memoryTotal = 0; })
        << u"19 – 97 318W"_s;
    QTest::newRow("a reading of a GPU that the machine does not have") << changed(
        virtualMachineMinute().current(), [](MachineCoverage &, ChipReading &chip) {
            chip.gpus = oneCardMinute().current().chip->gpus;
        }) << u"20 57"_s;
}

void TestMachineText::hostileValuesStayInTheirPlaces()
{
    QFETCH(SystemMetrics, current);
    QTEST(inOneLine(labelNumbers(current)), "expected");
}

QTEST_MAIN(TestMachineText)
#include "tst_MachineText.moc"
