#include "chip/ChipSnapshot.h"

#include <QTest>

using namespace corvane;

using Clusters = std::vector<CPUClusterStates>;
using Texts = QStringList;

namespace {

/// Of one CPU: all active ticks in user mode.
CoreTicks ticks(std::uint32_t active, std::uint32_t idle)
{
    return {.user = active, .idle = idle};
}

/// "group|subgroup|name|unit|value|state=residency …"
QString textOf(const ChipChannel &channel)
{
    const auto view = [](std::string_view text) {
        return QString::fromUtf8(text.data(), qsizetype(text.size()));
    };
    QStringList parts = {view(channel.group), view(channel.subgroup), view(channel.name)};
    if (channel.states.empty())
        parts << view(channel.unit.value_or("?")) << QString::number(channel.value);
    for (const ChipChannel::State &state : channel.states)
        parts << view(state.name) + u'=' + QString::number(state.residency);
    return parts.join(u'|');
}

Texts textsOf(const std::vector<ChipChannel> &channels)
{
    Texts texts;
    for (const ChipChannel &channel : channels)
        texts << textOf(channel);
    return texts;
}

/// Two CPUs with one policy over both and three states.
Clusters oneCluster()
{
    return {{.cluster = {"PCPU", {0, 1}},
             .policies = {{"policy0", {0, 1}}},
             .kHz = {1'000'000, 2'000'000, 3'000'000}}};
}

/// With nothing told about frequencies.
ChipSnapshot cpuSnapshot(const std::vector<CoreTicks> &cpus)
{
    return {.cpus = cpus, .clusters = {{.policyTimes = {{}}}}};
}

using namespace Qt::StringLiterals;

} // namespace

Q_DECLARE_METATYPE(ChipSnapshot)
Q_DECLARE_METATYPE(Clusters)

class TestChipSnapshot : public QObject {
    Q_OBJECT

private slots:
    void givesCPUChannels_data();
    void givesCPUChannels();
    void givesGPUChannels_data();
    void givesGPUChannels();
    void givesEnergyChannels_data();
    void givesEnergyChannels();
};

void TestChipSnapshot::givesCPUChannels_data()
{
    QTest::addColumn<Clusters>("clusters");
    QTest::addColumn<ChipSnapshot>("from");
    QTest::addColumn<ChipSnapshot>("to");
    QTest::addColumn<Texts>("channels");
    const auto channel = [](const QString &name, const QString &states) {
        return u"CPU Stats|CPU Complex Performance States|"_s + name + u'|' + states;
    };
    const ChipSnapshot start = cpuSnapshot({ticks(0, 0), ticks(0, 0)});

    ChipSnapshot now = cpuSnapshot({ticks(30, 70), ticks(10, 90)});
    now.clusters[0].presentKHz = 2'400'000;
    QTest::newRow("active time goes to the state next to the present frequency")
        << oneCluster() << start << now
        << Texts{channel(u"PCPU"_s, u"IDLE=160000000|1000 MHz=0|2000 MHz=40000000|3000 MHz=0"_s)};

    now.clusters[0].presentKHz.reset();
    QTest::newRow("active time at an unknown frequency comes behind the table")
        << oneCluster() << start << now
        << Texts{channel(u"PCPU"_s,
                         u"IDLE=160000000|1000 MHz=0|2000 MHz=0|3000 MHz=0|"
                         "ACTIVE=40000000"_s)};

    ChipSnapshot timesBefore = start;
    timesBefore.clusters[0].policyTimes[0] = {{3'000'000, 500}, {2'000'000, 700}, {1'000'000, 0}};
    ChipSnapshot timesNow = now;
    timesNow.clusters[0].policyTimes[0] = {{3'000'000, 575}, {2'000'000, 700}, {1'000'000, 25}};
    QTest::newRow("times in states split the active time, and count idle time too")
        << oneCluster() << timesBefore << timesNow
        << Texts{channel(u"PCPU"_s,
                         u"IDLE=160000000|1000 MHz=10000000|2000 MHz=0|"
                         "3000 MHz=30000000"_s)};

    timesNow.clusters[0].policyTimes[0] = {{3'000'000, 10}, {2'000'000, 30}, {1'000'000, 0}};
    QTest::newRow("times that fell count from nothing")
        << oneCluster() << timesBefore << timesNow
        << Texts{channel(u"PCPU"_s,
                         u"IDLE=160000000|1000 MHz=0|2000 MHz=30000000|"
                         "3000 MHz=10000000"_s)};

    timesNow.clusters[0] = timesBefore.clusters[0];
    timesNow.clusters[0].presentKHz = 900'000;
    QTest::newRow("times that stand leave the present frequency")
        << oneCluster() << timesBefore << timesNow
        << Texts{channel(u"PCPU"_s, u"IDLE=160000000|1000 MHz=40000000|2000 MHz=0|3000 MHz=0"_s)};

    Clusters split = oneCluster();
    split[0].policies = {{"policy0", {0}}, {"policy1", {1}}};
    ChipSnapshot splitBefore = start;
    splitBefore.clusters[0].policyTimes = {{{3'000'000, 0}, {1'000'000, 0}},
                                           {{3'000'000, 0}, {1'000'000, 0}}};
    ChipSnapshot splitNow = now;
    splitNow.clusters[0].policyTimes = {{{3'000'000, 100}, {1'000'000, 0}},
                                        {{3'000'000, 0}, {1'000'000, 100}}};
    QTest::newRow("each policy splits the active time of its own CPUs")
        << split << splitBefore << splitNow
        << Texts{channel(u"PCPU"_s,
                         u"IDLE=160000000|1000 MHz=10000000|2000 MHz=0|"
                         "3000 MHz=30000000"_s)};

    Clusters constant = oneCluster();
    constant[0].kHz = {2'596'142};
    constant[0].policies = {};
    QTest::newRow("a single state has all the active time")
        << constant << start << now
        << Texts{channel(u"PCPU"_s, u"IDLE=160000000|2596 MHz=40000000"_s)};

    Clusters bare = constant;
    bare[0].kHz = {};
    QTest::newRow("no state is known")
        << bare << start << now << Texts{channel(u"PCPU"_s, u"IDLE=160000000|ACTIVE=40000000"_s)};

    QTest::newRow("an idle machine") << bare << start << cpuSnapshot({ticks(0, 100), ticks(0, 100)})
                                     << Texts{channel(u"PCPU"_s, u"IDLE=200000000"_s)};

    QTest::newRow("a CPU that went offline adds nothing")
        << constant << cpuSnapshot({ticks(5, 5), ticks(7, 9)})
        << cpuSnapshot({ticks(15, 95), ticks(7, 9)})
        << Texts{channel(u"PCPU"_s, u"IDLE=90000000|2596 MHz=10000000"_s)};

    QTest::newRow("a CPU that neither snapshot knows adds nothing")
        << constant << cpuSnapshot({ticks(0, 0)}) << cpuSnapshot({ticks(10, 90)})
        << Texts{channel(u"PCPU"_s, u"IDLE=90000000|2596 MHz=10000000"_s)};

    QTest::newRow("counters wrap at 32 bits")
        << constant << cpuSnapshot({ticks(4294967290u, 4294967295u)}) << cpuSnapshot({ticks(4, 89)})
        << Texts{channel(u"PCPU"_s, u"IDLE=90000000|2596 MHz=10000000"_s)};

    const Clusters hybrid = {
        {.cluster = {"PCPU", {0}}, .kHz = {4'000'000}},
        {.cluster = {"ECPU", {1}}, .kHz = {2'000'000}},
    };
    ChipSnapshot hybridFrom = start;
    hybridFrom.clusters = {{}, {}};
    ChipSnapshot hybridTo = now;
    hybridTo.clusters = {{}, {}};
    QTest::newRow("one channel a cluster")
        << hybrid << hybridFrom << hybridTo
        << Texts{channel(u"PCPU"_s, u"IDLE=70000000|4000 MHz=30000000"_s),
                 channel(u"ECPU"_s, u"IDLE=90000000|2000 MHz=10000000"_s)};

    QTest::newRow("the times could not be read") << constant << start << ChipSnapshot{} << Texts{};
}

void TestChipSnapshot::givesCPUChannels()
{
    QFETCH(Clusters, clusters);
    QFETCH(ChipSnapshot, from);
    QFETCH(ChipSnapshot, to);
    QTEST(textsOf(chipChannels(from, to, clusters)), "channels");
}

void TestChipSnapshot::givesGPUChannels_data()
{
    QTest::addColumn<ChipSnapshot>("from");
    QTest::addColumn<ChipSnapshot>("to");
    QTest::addColumn<Texts>("channels");
    const GPUReading card = {.device = "card", .seconds = 1, .state = "P2", .busyFraction = 0.25};
    const GPUReading chip = {.device = "chip",
                             .integrated = true,
                             .seconds = 1,
                             .state = "800 MHz",
                             .busyFraction = 0.5};
    const QString cardText = u"GPU Stats||card|P2=250000|IDLE=750000"_s;
    const QString chipText = u"GPU Stats||chip|800 MHz=500000|IDLE=500000"_s;
    const ChipSnapshot start = {.seconds = 0};

    QTest::newRow("a discrete GPU")
        << start << ChipSnapshot{.seconds = 1, .gpus = {card}} << Texts{cardText};
    QTest::newRow("an integrated one")
        << start << ChipSnapshot{.seconds = 1, .gpus = {chip}} << Texts{chipText};
    QTest::newRow("beside a discrete one the integrated one is silent")
        << start << ChipSnapshot{.seconds = 1, .gpus = {chip, card}} << Texts{cardText};

    GPUReading mute = card;
    mute.busyFraction.reset();
    QTest::newRow("a discrete one without a load leaves the integrated one its channel")
        << start << ChipSnapshot{.seconds = 1, .gpus = {mute, chip}} << Texts{chipText};

    GPUReading second = card;
    second.device = "card 2";
    second.busyFraction = 1;
    QTest::newRow("two discrete ones")
        << start << ChipSnapshot{.seconds = 1, .gpus = {card, second}}
        << Texts{cardText, u"GPU Stats||card 2|P2=1000000|IDLE=0"_s};

    GPUReading counted = {.device = "chip",
                          .integrated = true,
                          .seconds = 0,
                          .state = "800 MHz",
                          .idleMilliseconds = 1000};
    const ChipSnapshot countedFrom = {.seconds = 0, .gpus = {counted}};
    counted.seconds = 1;
    counted.idleMilliseconds = 1500;
    QTest::newRow("the idle time between two snapshots")
        << countedFrom << ChipSnapshot{.seconds = 1, .gpus = {counted}} << Texts{chipText};
    QTest::newRow("an idle time without an earlier one")
        << start << ChipSnapshot{.seconds = 1, .gpus = {counted}} << Texts{};
    counted.seconds = 30;
    QTest::newRow("an idle time over the machine's sleep tells nothing")
        << countedFrom << ChipSnapshot{.seconds = 30, .gpus = {counted}} << Texts{};
    QTest::newRow("asleep") << ChipSnapshot{.seconds = 0, .gpus = {card}}
                            << ChipSnapshot{.seconds = 1} << Texts{};
}

void TestChipSnapshot::givesGPUChannels()
{
    QFETCH(ChipSnapshot, from);
    QFETCH(ChipSnapshot, to);
    QTEST(textsOf(chipChannels(from, to, {})), "channels");
}

void TestChipSnapshot::givesEnergyChannels_data()
{
    QTest::addColumn<ChipSnapshot>("from");
    QTest::addColumn<ChipSnapshot>("to");
    QTest::addColumn<Texts>("channels");
    const auto package = [](const char *zone, std::uint64_t microjoules) {
        return PackageEnergyReading{zone, microjoules, 65'532'610'987};
    };
    const ChipSnapshot start = {.seconds = 0, .packages = {package("a", 100), package("b", 200)}};
    const GPUReading apu = {.device = "apu", .integrated = true, .seconds = 2, .packageWatts = 18};
    const GPUReading card = {.device = "card", .seconds = 2, .watts = 100};

    QTest::newRow("two packages") << start
                                  << ChipSnapshot{.seconds = 2,
                                                  .packages = {package("a", 5'000'100),
                                                               package("b", 7'000'200)}}
                                  << Texts{u"Energy Model||CPU Energy|uJ|5000000"_s,
                                           u"Energy Model||CPU Energy|uJ|7000000"_s};
    QTest::newRow("a package that could not be read before")
        << ChipSnapshot{.seconds = 0} << ChipSnapshot{.seconds = 2, .packages = {package("a", 5)}}
        << Texts{};
    QTest::newRow("without packages an APU's power counts")
        << ChipSnapshot{.seconds = 0} << ChipSnapshot{.seconds = 2, .gpus = {apu}}
        << Texts{u"Energy Model||CPU Energy|uJ|36000000"_s};
    QTest::newRow("packages come before an APU's power")
        << start << ChipSnapshot{.seconds = 2, .packages = {package("a", 4'000'100)}, .gpus = {apu}}
        << Texts{u"Energy Model||CPU Energy|uJ|4000000"_s};
    QTest::newRow("a discrete GPU's power")
        << ChipSnapshot{.seconds = 0} << ChipSnapshot{.seconds = 2, .gpus = {card}}
        << Texts{u"Energy Model||GPU Energy|uJ|200000000"_s};

    GPUReading odd = card;
    odd.integrated = true;
    QTest::newRow("an integrated GPU never has energy of its own")
        << ChipSnapshot{.seconds = 0} << ChipSnapshot{.seconds = 2, .gpus = {odd}} << Texts{};
    QTest::newRow("nothing is readable") << ChipSnapshot{} << ChipSnapshot{.seconds = 2} << Texts{};
}

void TestChipSnapshot::givesEnergyChannels()
{
    QFETCH(ChipSnapshot, from);
    QFETCH(ChipSnapshot, to);
    QTEST(textsOf(chipChannels(from, to, {})), "channels");
}

QTEST_GUILESS_MAIN(TestChipSnapshot)
#include "tst_ChipSnapshot.moc"
