#include "chip/ChipSnapshot.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

using Number = std::optional<double>;

Q_DECLARE_METATYPE(ChipSnapshot)

namespace {

/// "card busy 0.25 at P2, 100 W, 61 C" for each GPU; what is unknown is left out.
QStringList textsOf(const std::vector<GPUMetrics> &gpus)
{
    QStringList texts;
    for (const GPUMetrics &gpu : gpus) {
        QString text = gpu.device;
        if (gpu.integrated)
            text += u" (integrated)"_s;
        if (gpu.activeFraction)
            text += u" busy %1"_s.arg(*gpu.activeFraction);
        if (gpu.state)
            text += u" at "_s + *gpu.state;
        if (gpu.watts)
            text += u" %1 W"_s.arg(*gpu.watts);
        if (gpu.tempC)
            text += u" %1 C"_s.arg(*gpu.tempC);
        if (gpu.megahertz)
            text += u" %1 MHz"_s.arg(*gpu.megahertz);
        if (gpu.memoryUsed)
            text +=
                (gpu.memoryIsLowerBound ? u" >= %1 bytes"_s : u" %1 bytes"_s).arg(*gpu.memoryUsed);
        if (gpu.memoryOwnUsed)
            text += u" %1 own"_s.arg(*gpu.memoryOwnUsed);
        if (gpu.limit == GPULimit::temperature)
            text += u" hot"_s;
        texts << text;
    }
    return texts;
}

GPUReading card()
{
    return {.device = u"card"_s, .seconds = 1, .state = "P2", .busyFraction = 0.25};
}

GPUReading integrated()
{
    return {.device = u"chip"_s,
            .integrated = true,
            .seconds = 1,
            .state = "800 MHz",
            .busyFraction = 0.5};
}

} // namespace

class TestChipSnapshot : public QObject {
    Q_OBJECT

private slots:
    void readsCPUs();
    void combinesTheLoadOfGPUs_data();
    void combinesTheLoadOfGPUs();
    void sharesStatesOfGPUs();
    void keepsEachGPU();
    void measuresPower_data();
    void measuresPower();
    void splitsPackagesIntoTheirParts_data();
    void splitsPackagesIntoTheirParts();
    void averagesTemperatures();
    void anEmptySnapshotHasNoValues();
};

void TestChipSnapshot::readsCPUs()
{
    const std::vector<CPUCluster> clusters = {{.cpus = {0}, .kHz = {3'600'000}}};
    const ChipReading reading =
        chipReading({.cpu = {.ticks = {{}}, .clusters = {{}}}},
                    {.cpu = {.ticks = {{.user = 25, .idle = 75}}, .clusters = {{}}}}, clusters);
    QCOMPARE(reading.cpuActiveFraction, 0.25);
    QCOMPARE(reading.cpuActiveMHz, 3600.0);
    QVERIFY(!reading.denied.cpuLoad);
    // The first sample can come before the first tick of the counters.
    const ChipSnapshot start{.cpu = {.ticks = {{}}, .clusters = {{}}}};
    QVERIFY(chipReading(start, start, clusters).denied.cpuLoad);
}

void TestChipSnapshot::combinesTheLoadOfGPUs_data()
{
    QTest::addColumn<ChipSnapshot>("from");
    QTest::addColumn<ChipSnapshot>("to");
    QTest::addColumn<double>("fraction");
    QTest::addColumn<QString>("state");
    const ChipSnapshot start = {.seconds = 0};

    QTest::newRow("a discrete GPU")
        << start << ChipSnapshot{.seconds = 1, .gpus = {card()}} << 0.25 << u"P2"_s;
    QTest::newRow("an integrated one")
        << start << ChipSnapshot{.seconds = 1, .gpus = {integrated()}} << 0.5 << u"800 MHz"_s;
    QTest::newRow("an integrated one does not count beside a discrete one")
        << start << ChipSnapshot{.seconds = 1, .gpus = {integrated(), card()}} << 0.25 << u"P2"_s;

    GPUReading mute = card();
    mute.busyFraction.reset();
    QTest::newRow("an integrated one counts beside a discrete one without a load")
        << start << ChipSnapshot{.seconds = 1, .gpus = {mute, integrated()}} << 0.5 << u"800 MHz"_s;

    GPUReading second = card();
    second.device = u"card 2"_s;
    second.state = "P0";
    second.busyFraction = 1;
    QTest::newRow("the mean of two discrete ones, with the state of the busier one")
        << start << ChipSnapshot{.seconds = 1, .gpus = {card(), second}} << 0.625 << u"P0"_s;

    GPUReading idle = card();
    idle.busyFraction = 0;
    QTest::newRow("no state is dominant at rest")
        << start << ChipSnapshot{.seconds = 1, .gpus = {idle}} << 0.0 << u""_s;

    GPUReading counted = integrated();
    counted.seconds = 0;
    counted.busyFraction.reset();
    counted.idleMilliseconds = 1000;
    const ChipSnapshot countedFrom = {.seconds = 0, .gpus = {counted}};
    counted.seconds = 1;
    counted.idleMilliseconds = 1500;
    QTest::newRow("the idle time between two snapshots")
        << countedFrom << ChipSnapshot{.seconds = 1, .gpus = {counted}} << 0.5 << u"800 MHz"_s;
    QTest::newRow("an idle time without an earlier one gives no load")
        << start << ChipSnapshot{.seconds = 1, .gpus = {counted}} << 0.0 << u""_s;
    counted.seconds = 30;
    QTest::newRow("an idle time over the machine's sleep gives no load")
        << countedFrom << ChipSnapshot{.seconds = 30, .gpus = {counted}} << 0.0 << u""_s;
    QTest::newRow("a sleeping GPU") << ChipSnapshot{.seconds = 0, .gpus = {card()}}
                                    << ChipSnapshot{.seconds = 1} << 0.0 << u""_s;
}

void TestChipSnapshot::combinesTheLoadOfGPUs()
{
    QFETCH(ChipSnapshot, from);
    QFETCH(ChipSnapshot, to);
    const ChipReading reading = chipReading(from, to, {});
    QTEST(reading.gpuActiveFraction, "fraction");
    QTEST(reading.gpuDominantState.value(), "state");
}

void TestChipSnapshot::sharesStatesOfGPUs()
{
    GPUReading second = card();
    second.device = u"card 2"_s;
    second.state = "P0";
    second.busyFraction = 0.75;
    const ChipReading reading = chipReading({}, {.seconds = 1, .gpus = {card(), second}}, {});
    QCOMPARE(reading.gpuStateResidency.size(), std::size_t(2));
    QCOMPARE(reading.gpuStateResidency[0].state, u"P0"_s);
    QCOMPARE(reading.gpuStateResidency[0].fraction, 0.75);
    QCOMPARE(reading.gpuStateResidency[1].state, u"P2"_s);
    QCOMPARE(reading.gpuStateResidency[1].fraction, 0.25);
}

void TestChipSnapshot::keepsEachGPU()
{
    GPUReading apu = integrated();
    apu.packageWatts = 18;
    apu.watts = 7; // Never its own.
    apu.temperatures = {50};
    GPUReading hot = card();
    hot.watts = 100;
    hot.temperatures = {61, 74, 66};
    const GPUReading mute = {.device = u"mute"_s, .seconds = 1};
    apu.memoryUsed = 9000;
    apu.memoryOwnUsed = 500;
    hot.megahertz = 2610;
    hot.memoryUsed = 7000;
    hot.memoryIsLowerBound = true;
    hot.limit = GPULimit::temperature;
    const ChipReading reading = chipReading({}, {.seconds = 1, .gpus = {apu, hot, mute}}, {});
    QCOMPARE(
        textsOf(reading.gpus),
        (QStringList{u"chip (integrated) busy 0.5 at 800 MHz 50 C 9000 bytes 500 own"_s,
                     u"card busy 0.25 at P2 100 W 67 C 2610 MHz >= 7000 bytes hot"_s, u"mute"_s}));
}

void TestChipSnapshot::measuresPower_data()
{
    QTest::addColumn<ChipSnapshot>("from");
    QTest::addColumn<ChipSnapshot>("to");
    QTest::addColumn<double>("cpuWatts");
    QTest::addColumn<double>("gpuWatts");
    const auto package = [](const char *zone, std::uint64_t microjoules) {
        return PackageEnergyReading{zone, microjoules, 65'532'610'987};
    };
    const ChipSnapshot start = {.seconds = 0, .packages = {package("a", 100), package("b", 200)}};
    const GPUReading apu = {
        .device = u"apu"_s, .integrated = true, .seconds = 2, .packageWatts = 18};
    GPUReading powered = card();
    powered.watts = 100;

    QTest::newRow("two packages") << start
                                  << ChipSnapshot{.seconds = 2,
                                                  .packages = {package("a", 5'000'100),
                                                               package("b", 7'000'200)}}
                                  << 6.0 << 0.0;
    QTest::newRow("a package that could not be read before")
        << ChipSnapshot{.seconds = 0} << ChipSnapshot{.seconds = 2, .packages = {package("a", 5)}}
        << 0.0 << 0.0;
    QTest::newRow("a counter that started again while the machine slept")
        << ChipSnapshot{.seconds = 0, .packages = {package("a", 30'000'000'000)}}
        << ChipSnapshot{.seconds = 1, .packages = {package("a", 5)}} << 0.0 << 0.0;
    QTest::newRow("snapshots that follow each other at once count as 50 ms")
        << start << ChipSnapshot{.seconds = 0, .packages = {package("a", 1'000'100)}} << 20.0
        << 0.0;
    QTest::newRow("an APU's power without packages")
        << ChipSnapshot{.seconds = 0} << ChipSnapshot{.seconds = 2, .gpus = {apu}} << 18.0 << 0.0;
    QTest::newRow("packages come before an APU's power")
        << start << ChipSnapshot{.seconds = 2, .packages = {package("a", 4'000'100)}, .gpus = {apu}}
        << 2.0 << 0.0;
    QTest::newRow("the sum of discrete GPUs")
        << ChipSnapshot{.seconds = 0} << ChipSnapshot{.seconds = 2, .gpus = {powered, powered}}
        << 0.0 << 200.0;

    GPUReading odd = powered;
    odd.integrated = true;
    QTest::newRow("an integrated GPU has no power of its own")
        << ChipSnapshot{.seconds = 0} << ChipSnapshot{.seconds = 2, .gpus = {odd}} << 0.0 << 0.0;

    GPUReading counted = powered;
    counted.microjoules = 5'000'000;
    const ChipSnapshot countedFrom = {.seconds = 1, .gpus = {counted}};
    counted.seconds = 2;
    counted.microjoules = 65'000'000;
    QTest::newRow("the energy counter of a GPU comes before its power")
        << countedFrom << ChipSnapshot{.seconds = 2, .gpus = {counted}} << 0.0 << 60.0;
}

void TestChipSnapshot::measuresPower()
{
    QFETCH(ChipSnapshot, from);
    QFETCH(ChipSnapshot, to);
    const ChipReading reading = chipReading(from, to, {});
    QTEST(reading.cpuWatts, "cpuWatts");
    QTEST(reading.gpuWatts, "gpuWatts");
}

/// Counters of two seconds, in the text "CPU 4 GPU 3 package 10" of watts; what is unknown is left
/// out.
void TestChipSnapshot::splitsPackagesIntoTheirParts_data()
{
    using enum EnergyPart;
    QTest::addColumn<ChipSnapshot>("to");
    QTest::addColumn<QString>("expected");
    const auto counter = [](EnergyPart part, double watts, const std::string &zone = {}) {
        return PackageEnergyReading{.zone = zone + char('a' + int(part)),
                                    .microjoules = std::uint64_t(watts * 2e6),
                                    .part = part};
    };
    const auto row = [](const char *name, const std::vector<PackageEnergyReading> &counters,
                        const std::vector<GPUReading> &gpus, const QString &expected) {
        QTest::newRow(name) << ChipSnapshot{.seconds = 2, .packages = counters, .gpus = gpus}
                            << expected;
    };
    const std::vector<PackageEnergyReading> whole = {counter(package, 10), counter(cores, 4),
                                                     counter(graphics, 3)};
    const std::vector<PackageEnergyReading> two = {
        counter(package, 10, "1"), counter(cores, 4, "1"), counter(graphics, 3, "1"),
        counter(package, 20, "2"), counter(cores, 9, "2"), counter(graphics, 5, "2")};
    row("the cores and the graphics of a package", whole, {integrated()},
        u"CPU 4 GPU 3 package 10"_s);
    row("two packages with both parts", two, {integrated()}, u"CPU 13 GPU 8 package 30"_s);
    row("two packages, of which one tells no cores", {two[0], two[1], two[2], two[3], two[5]},
        {integrated()}, u"CPU 30"_s);
    row("two packages, of which one tells no graphics", {two[0], two[1], two[2], two[3], two[4]},
        {integrated()}, u"CPU 30"_s);
    row("a package without graphics counts as the CPU", {whole[0], whole[1]}, {integrated()},
        u"CPU 10"_s);
    row("a package without cores counts as the CPU", {whole[0], whole[2]}, {integrated()},
        u"CPU 10"_s);
    row("parts without their package", {whole[1], whole[2]}, {integrated()}, u""_s);
    row("the graphics of a package are no card's", whole, {card()}, u"CPU 4 package 10"_s);
    row("without any GPU", whole, {}, u"CPU 4 package 10"_s);
    GPUReading second = integrated();
    second.device = u"second"_s;
    row("which of two integrated GPUs used the power is unknown", whole, {integrated(), second},
        u"CPU 4 package 10"_s);
    row("an integrated GPU beside a card", whole, {card(), integrated()},
        u"CPU 4 GPU 3 package 10"_s);
    PackageEnergyReading restarted = whole[1];
    restarted.zone = "unknown before";
    row("cores that could not be read before", {whole[0], restarted, whole[2]}, {integrated()},
        u"CPU 10"_s);

    GPUReading apu = integrated();
    apu.packageWatts = 18;
    apu.coreWatts = 6;
    apu.watts = 7;
    row("an APU that tells its parts", {}, {apu}, u"CPU 6 GPU 7 package 18"_s);
    row("the same behind a card", {}, {card(), apu}, u"CPU 6 GPU 7 package 18"_s);
    row("an APU's cores beside the counter of its package", {whole[0]}, {apu},
        u"CPU 6 GPU 7 package 10"_s);
    GPUReading other = apu;
    other.device = u"other"_s;
    row("two APUs", {}, {apu, other}, u"CPU 12 GPU 14 package 36"_s);
    other.coreWatts.reset();
    row("two APUs, of which one does not tell its cores", {}, {apu, other}, u"CPU 36 GPU 7"_s);
}

void TestChipSnapshot::splitsPackagesIntoTheirParts()
{
    QFETCH(ChipSnapshot, to);
    ChipSnapshot from = {.seconds = 0, .packages = to.packages};
    std::erase_if(from.packages, [](const auto &zone) { return zone.zone == "unknown before"; });
    for (PackageEnergyReading &counter : from.packages)
        counter.microjoules = 0;
    const ChipReading reading = chipReading(from, to, {});
    QStringList texts;
    if (!reading.denied.cpuWatts)
        texts << u"CPU %1"_s.arg(reading.cpuWatts);
    if (reading.gpuWatts > 0)
        texts << u"GPU %1"_s.arg(reading.gpuWatts);
    if (reading.packageWatts)
        texts << u"package %1"_s.arg(*reading.packageWatts);
    QTEST(texts.join(u' '), "expected");
}

void TestChipSnapshot::averagesTemperatures()
{
    GPUReading first = card();
    first.temperatures = {60, 70};
    GPUReading second = integrated();
    second.temperatures = {50};
    const ChipReading reading = chipReading({},
                                            {.gpus = {first, second},
                                             .temperatures = {{ChipPart::cpu, 50},
                                                              {ChipPart::cpu, 53},
                                                              {ChipPart::gpu, 40},
                                                              {ChipPart::package, 58}}},
                                            {});
    QCOMPARE(reading.cpuTempC, Number(51.5));
    QCOMPARE(reading.gpuTempC, Number(55)); // Every sensor counts alike.
    QCOMPARE(reading.packageTempC, Number(58));
    QVERIFY(!reading.aneTempC);
}

void TestChipSnapshot::anEmptySnapshotHasNoValues()
{
    const ChipReading reading = chipReading({}, {}, {});
    QCOMPARE(totalWatts(reading), 0.0);
    QCOMPARE(reading.gpuDominantState, std::optional(QString()));
    QVERIFY(reading.gpuStateResidency.empty() && reading.gpus.empty());
    QVERIFY(!reading.cpuTempC && !reading.gpuTempC && !reading.packageTempC);
}

QTEST_GUILESS_MAIN(TestChipSnapshot)
#include "tst_ChipSnapshot.moc"
