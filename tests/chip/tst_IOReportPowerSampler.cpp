#include "chip/IOReportPowerSampler.h"
#include "chip/ScriptedChannel.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;

namespace {

/// Cumulative counters of a chip with one CPU cluster, its GPU and their energy, behind the seams
/// of the sampler. Samples are snapshots; a difference is formed of two.
struct ScriptedChip {
    struct Counters {
        std::int64_t cpuMillijoules = 0;
        std::int64_t idle = 0;
        std::int64_t active = 0;
    };
    struct Bridge;
    using Sampler = IOReportPowerSampler<Bridge>;

    Counters counters = {};
    double now = 1000;
    bool hasChannels = true;
    bool givesSamples = true;
    bool givesDeltas = true;
    std::vector<ChannelGroupRequest> requests = {};
    int samplesTaken = 0;
    int coreReadings = 0;
    int temperatureReadings = 0;
    std::weak_ptr<const Counters> newest = {};

    std::unique_ptr<Sampler> open();
};

struct ScriptedChip::Bridge {
    using Sample = std::shared_ptr<const Counters>;

    ScriptedChip &chip;

    Sample takeSample()
    {
        ++chip.samplesTaken;
        if (!chip.givesSamples)
            return nullptr;
        auto sample = std::make_shared<const Counters>(chip.counters);
        chip.newest = sample;
        return sample;
    }

    Sample delta(const Counters *from, const Counters *to) const
    {
        if (!from || !to || !chip.givesDeltas)
            return nullptr;
        return std::make_shared<const Counters>(
            Counters{.cpuMillijoules = to->cpuMillijoules - from->cpuMillijoules,
                     .idle = to->idle - from->idle,
                     .active = to->active - from->active});
    }

    template <typename Visitor>
    void iterate(const Counters *delta, Visitor visit) const
    {
        energy("CPU Energy", delta->cpuMillijoules).show(visit);
        cpu("PCPU", {{"IDLE", delta->idle}, {"V0", delta->active}}).show(visit);
        gpu({{"OFF", 3}, {"P1", 1}}).show(visit);
    }
};

std::unique_ptr<ScriptedChip::Sampler> ScriptedChip::open()
{
    return Sampler::open({
        .cores = CPUCoreSampler([this] {
            ++coreReadings;
            const std::uint32_t ticks = 10u * static_cast<std::uint32_t>(coreReadings);
            return std::optional(
                std::vector<CoreTicks>{{.user = ticks, .idle = ticks}, {.idle = ticks}});
        }),
        .temperatures = ThermalSampler([this] {
            ++temperatureReadings;
            return std::map<std::string, double>{{"PACC 1", 61.5}, {"PMU tdie1", 48}};
        }),
        .frequencies = {.performance = {3204}},
        .openBridge =
            [this](const auto &wanted) {
                requests = wanted;
                return hasChannels ? std::unique_ptr<Bridge>(new Bridge{*this}) : nullptr;
            },
        .now = [this] { return now; },
    });
}

} // namespace

class TestIOReportPowerSampler : public QObject {
    Q_OBJECT

private slots:
    void asksForThreeGroups();
    void opensNothingWithoutChannels();
    void readsFromTheFirstTick();
    void fillsInCoresAndTemperatures();
    void measuresEachInterval();
    void floorsTheInterval_data();
    void floorsTheInterval();
    void losesNothingToFailedTicks_data();
    void losesNothingToFailedTicks();
    void staysSilentWithoutAFirstSample();
    void keepsOneSample();
};

void TestIOReportPowerSampler::asksForThreeGroups()
{
    ScriptedChip chip;
    QVERIFY(chip.open());
    using Text = std::optional<std::string>;
    QCOMPARE(chip.requests.size(), std::size_t(3));
    QCOMPARE(chip.requests[0].group, Text("Energy Model"));
    QCOMPARE(chip.requests[0].subgroup, Text());
    QCOMPARE(chip.requests[1].group, Text("GPU Stats"));
    QCOMPARE(chip.requests[1].subgroup, Text());
    QCOMPARE(chip.requests[2].group, Text("CPU Stats"));
    QCOMPARE(chip.requests[2].subgroup, Text("CPU Complex Performance States"));
    QCOMPARE(chip.samplesTaken, 1);
}

void TestIOReportPowerSampler::opensNothingWithoutChannels()
{
    ScriptedChip chip{.hasChannels = false};
    QVERIFY(!chip.open());
    QCOMPARE(chip.samplesTaken, 0);
}

void TestIOReportPowerSampler::readsFromTheFirstTick()
{
    ScriptedChip chip{.counters = {.cpuMillijoules = 77'000, .idle = 500, .active = 500}};
    const auto sampler = chip.open();
    chip.now += 0.5;
    chip.counters = {.cpuMillijoules = 80'000, .idle = 503, .active = 501};
    const auto reading = sampler->sample();
    QVERIFY(reading);
    QCOMPARE(reading->cpuWatts, 6.0);
    QCOMPARE(reading->cpuActiveFraction, 0.25);
    QCOMPARE(reading->cpuActiveMHz, 3204.0);
    QCOMPARE(reading->gpuActiveFraction, 0.25);
    QCOMPARE(reading->gpuDominantState, std::optional(QStringLiteral("P1")));
    QCOMPARE(reading->gpuStateResidency.size(), std::size_t(1));
}

void TestIOReportPowerSampler::fillsInCoresAndTemperatures()
{
    ScriptedChip chip;
    const auto sampler = chip.open();
    QCOMPARE(chip.coreReadings, 0);
    QCOMPARE(chip.temperatureReadings, 0);

    auto reading = sampler->sample();
    QCOMPARE(reading->cpuCoreUtilizations, (std::vector<double>{0, 0})); // Nothing to compare with.
    QCOMPARE(reading->cpuTempC, std::optional(61.5));
    QCOMPARE(reading->packageTempC, std::optional(48.0));
    QVERIFY(!reading->gpuTempC && !reading->aneTempC);

    reading = sampler->sample();
    QCOMPARE(reading->cpuCoreUtilizations, (std::vector<double>{0.5, 0}));
    QCOMPARE(chip.coreReadings, 2);
    QCOMPARE(chip.temperatureReadings, 2);
}

void TestIOReportPowerSampler::measuresEachInterval()
{
    ScriptedChip chip;
    const auto sampler = chip.open();
    for (const auto &[seconds, millijoules, watts] :
         {std::tuple(1.0, 5000, 5.0), {2.0, 5000, 2.5}, {1.0, 0, 0.0}, {0.25, 1000, 4.0}}) {
        chip.now += seconds;
        chip.counters.cpuMillijoules += millijoules;
        QCOMPARE(sampler->sample()->cpuWatts, watts);
    }
}

void TestIOReportPowerSampler::floorsTheInterval_data()
{
    QTest::addColumn<double>("seconds");
    QTest::addColumn<double>("watts");
    QTest::newRow("above the floor") << 0.0625 << 16.0;
    QTest::newRow("a few milliseconds") << 0.004 << 20.0;
    QTest::newRow("no time at all") << 0.0 << 20.0;
    QTest::newRow("a clock that ran backwards") << -30.0 << 20.0;
}

void TestIOReportPowerSampler::floorsTheInterval()
{
    QFETCH(double, seconds);
    ScriptedChip chip;
    const auto sampler = chip.open();
    chip.now += seconds;
    chip.counters.cpuMillijoules += 1000;
    QTEST(sampler->sample()->cpuWatts, "watts");

    // The next interval starts at this tick, wherever the clock stood.
    chip.now += 1;
    chip.counters.cpuMillijoules += 3000;
    QCOMPARE(sampler->sample()->cpuWatts, 3.0);
}

void TestIOReportPowerSampler::losesNothingToFailedTicks_data()
{
    QTest::addColumn<bool>("givesSamples");
    QTest::newRow("no sample") << false;
    QTest::newRow("no difference") << true;
}

void TestIOReportPowerSampler::losesNothingToFailedTicks()
{
    QFETCH(bool, givesSamples);
    ScriptedChip chip;
    const auto sampler = chip.open();
    chip.givesSamples = givesSamples;
    chip.givesDeltas = !givesSamples;
    for (int tick = 0; tick < 3; ++tick) {
        chip.now += 1;
        chip.counters.cpuMillijoules += 2000;
        QVERIFY(!sampler->sample());
    }
    QCOMPARE(chip.coreReadings, 0);
    QCOMPARE(chip.temperatureReadings, 0);

    chip.givesSamples = chip.givesDeltas = true;
    chip.now += 1;
    chip.counters.cpuMillijoules += 4000;
    QCOMPARE(sampler->sample()->cpuWatts, 2.5); // 10 J since the last success, 4 s ago.
    QCOMPARE(chip.coreReadings, 1);
}

void TestIOReportPowerSampler::staysSilentWithoutAFirstSample()
{
    ScriptedChip chip{.givesSamples = false};
    const auto sampler = chip.open();
    QVERIFY(sampler);
    chip.givesSamples = true;
    chip.now += 1;
    QVERIFY(!sampler->sample());
    QCOMPARE(chip.samplesTaken, 1);
}

void TestIOReportPowerSampler::keepsOneSample()
{
    ScriptedChip chip;
    auto sampler = chip.open();
    const auto first = chip.newest;
    QVERIFY(!first.expired());
    QVERIFY(sampler->sample());
    QVERIFY(first.expired());

    const auto second = chip.newest;
    chip.givesDeltas = false;
    QVERIFY(!sampler->sample());
    QVERIFY(chip.newest.expired()); // The sample of a failed difference is given back.
    QVERIFY(!second.expired());

    sampler.reset();
    QVERIFY(second.expired());
}

QTEST_APPLESS_MAIN(TestIOReportPowerSampler)
#include "tst_IOReportPowerSampler.moc"
