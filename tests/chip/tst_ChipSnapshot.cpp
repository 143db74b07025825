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
