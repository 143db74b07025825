#include "chip/ChannelTotals.h"
#include "chip/ScriptedChannel.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

const FrequencyTables tables{.efficiency = {600, 972, 2064}, .performance = {600, 3204}};

ChipReading readingOf(const ScriptedChannels &channels, double seconds = 1)
{
    ChannelTotals totals(tables);
    for (const ScriptedChannel &channel : channels)
        channel.show([&totals](const ReportingChannel &view) { totals.add(view); });
    return totals.reading(seconds);
}

constexpr std::int64_t wrongFormat = std::numeric_limits<std::int64_t>::min();

} // namespace

class TestChannelTotals : public QObject {
    Q_OBJECT

private slots:
    void convertsUnits_data();
    void convertsUnits();
    void nothingIsZero();
    void sumsEnergy_data();
    void sumsEnergy();
    void dividesByTheInterval();
    void readsGPUStates_data();
    void readsGPUStates();
    void listsGPUStates();
    void readsCPUStates_data();
    void readsCPUStates();
    void ignoresOtherGroups();
};

void TestChannelTotals::convertsUnits_data()
{
    using Label = std::optional<QString>;
    QTest::addColumn<Label>("label");
    QTest::addColumn<double>("joules");

    QTest::newRow("no label is a nanojoule") << Label() << 1e-9;
    QTest::newRow("picojoule") << Label(u"pJ"_s) << 1e-12;
    QTest::newRow("nanojoule") << Label(u"nJ"_s) << 1e-9;
    QTest::newRow("microjoule with a u") << Label(u"uJ"_s) << 1e-6;
    QTest::newRow("microjoule with the Greek letter") << Label(u"\u03BCJ"_s) << 1e-6;
    QTest::newRow("the capital Greek letter is lowered to it") << Label(u"\u039CJ"_s) << 1e-6;
    QTest::newRow("the micro sign is another character") << Label(u"\u00B5J"_s) << 1e-9;
    QTest::newRow("millijoule") << Label(u"mJ"_s) << 1e-3;
    QTest::newRow("joule") << Label(u"J"_s) << 1.0;
    QTest::newRow("white space around is trimmed") << Label(u" mJ "_s) << 1e-3;
    QTest::newRow("white space of every kind") << Label(u"\t\u00A0J\n"_s) << 1.0;
    QTest::newRow("white space within is not") << Label(u"m J"_s) << 1e-9;
    QTest::newRow("capitals mean the same: no megajoules") << Label(u"MJ"_s) << 1e-3;
    QTest::newRow("another unit") << Label(u"24Mticks"_s) << 1e-9;
    QTest::newRow("an empty label") << Label(u""_s) << 1e-9;
    QTest::newRow("more than a unit") << Label(u"mJ/s"_s) << 1e-9;
}

void TestChannelTotals::convertsUnits()
{
    QFETCH(std::optional<QString>, label);
    QFETCH(double, joules);
    const auto bytes = label ? std::optional(label->toStdString()) : std::nullopt;
    QCOMPARE(ChannelTotals::energyToJoules(bytes), joules);
}

void TestChannelTotals::nothingIsZero()
{
    const ChipReading reading = readingOf({});
    QCOMPARE(totalWatts(reading), 0.0);
    QCOMPARE(reading.cpuActiveFraction, 0.0);
    QCOMPARE(reading.gpuActiveFraction, 0.0);
    QCOMPARE(reading.cpuActiveMHz, 0.0);
    QCOMPARE(reading.gpuDominantState, std::optional(u""_s));
    QVERIFY(reading.gpuStateResidency.empty());
    QVERIFY(reading.cpuCoreUtilizations.empty());
    QVERIFY(!reading.cpuTempC && !reading.gpuTempC && !reading.aneTempC && !reading.packageTempC);
}

void TestChannelTotals::sumsEnergy_data()
{
    QTest::addColumn<ScriptedChannels>("channels");
    QTest::addColumn<double>("cpuWatts");
    QTest::addColumn<double>("gpuWatts");
    QTest::addColumn<double>("aneWatts");

    const auto row = [](const char *name, ScriptedChannels channels, double cpuWatts,
                        double gpuWatts, double aneWatts) {
        QTest::newRow(name) << std::move(channels) << cpuWatts << gpuWatts << aneWatts;
    };
    row("each by its own unit",
        {energy("CPU Energy", 4500), energy("GPU Energy", 2'500'000'000, "nJ"),
         energy("ANE", 250, " mJ ")},
        4.5, 2.5, 0.25);
    row("without a unit it is nanojoules", {energy("CPU Energy", 3'000'000'000, std::nullopt)}, 3,
        0, 0);
    row("two dies add up", {energy("CPU Energy", 4000), energy("CPU Energy", 1500)}, 5.5, 0, 0);
    row("two dies of Neural Engines", {energy("ANE0_0", 46), energy("ANE0_1", 58)}, 0, 0, 0.104);
    row("every name of a Neural Engine",
        {energy("ANE", 1), energy("ANE Energy", 20), energy("ANE0", 300), energy("ANE1", 4000),
         energy("ANE1_1", 50'000)},
        0, 0, 54.321);
    row("parts of the whole do not count",
        {energy("GPU0", 900), energy("GPU SRAM0", 900), energy("DIE_0_CPU Energy", 900),
         energy("PACC0_CPU", 900), energy("DRAM0", 900), energy("ANE2", 900),
         energy("ANE Energy 2", 900)},
        0, 0, 0);
    row("names are compared with their case",
        {energy("cpu energy", 900), energy("GPU energy", 900), energy("ane", 900)}, 0, 0, 0);
    row("names are compared as a whole",
        {energy(" CPU Energy", 900), energy("GPU Energy ", 900), energy("", 900)}, 0, 0, 0);
    row("a counter that ran backwards is no power", {energy("CPU Energy", -500)}, 0, 0, 0);
    row("the sum decides, not its parts", {energy("ANE0", -500), energy("ANE1", 2000)}, 0, 0, 1.5);
    row("a channel that is no counter", {energy("CPU Energy", wrongFormat)}, 0, 0, 0);
    row("a counter that stood still", {energy("GPU Energy", 0)}, 0, 0, 0);
}

void TestChannelTotals::sumsEnergy()
{
    QFETCH(ScriptedChannels, channels);
    const ChipReading reading = readingOf(channels);
    QTEST(reading.cpuWatts, "cpuWatts");
    QTEST(reading.gpuWatts, "gpuWatts");
    QTEST(reading.aneWatts, "aneWatts");
}

void TestChannelTotals::dividesByTheInterval()
{
    const ScriptedChannels channels{energy("CPU Energy", 6000),
                                    cpu("PCPU", {{"IDLE", 1}, {"V0", 1}})};
    const ChipReading reading = readingOf(channels, 0.5);
    QCOMPARE(reading.cpuWatts, 12.0);
    QCOMPARE(reading.cpuActiveFraction, 0.5); // A share of time does not depend on the interval.
    QCOMPARE(reading.cpuActiveMHz, 600.0);
}

void TestChannelTotals::readsGPUStates_data()
{
    QTest::addColumn<ScriptedChannels>("channels");
    QTest::addColumn<double>("fraction");
    QTest::addColumn<QString>("dominant");

    const auto row = [](const char *name, ScriptedChannels channels, double fraction,
                        const char16_t *dominant) {
        QTest::newRow(name) << std::move(channels) << fraction << QString::fromUtf16(dominant);
    };
    row("off and two levels", {gpu({{"OFF", 75}, {"P1", 20}, {"P2", 5}})}, 0.25, u"P1");
    row("always active", {gpu({{"P1", 20}, {"P2", 30}})}, 1, u"P2");
    row("idle, off and down alone", {gpu({{"IDLE", 5}, {"IDLE_2", 5}, {"OFF", 5}, {"DOWN", 5}})}, 0,
        u"");
    row("whatever their case", {gpu({{"idle", 5}, {"Idle3", 5}, {"Off", 5}, {"down", 5}})}, 0, u"");
    row("off and down count as whole names alone",
        {gpu({{"OFF2", 6}, {"DOWNCLOCK", 2}, {"NOT IDLE", 2}, {"OFF", 10}})}, 0.5, u"OFF2");
    row("negative residencies are no states", {gpu({{"OFF", -1}, {"P1", 10}, {"P2", wrongFormat}})},
        1, u"P1");
    row("nothing but negative residencies", {gpu({{"OFF", -1}, {"P1", -1}})}, 0, u"");
    row("a negative idle time does not lift the fraction above 1",
        {gpu({{"IDLE", -50}, {"P1", 10}})}, 1, u"P1");
    row("a tie across channels keeps the earlier channel's", {gpu({{"P3", 10}}), gpu({{"P1", 10}})},
        1, u"P3");
    row("every channel of the group counts",
        {gpu({{"OFF", 30}}),
         {.group = "GPU Stats", .name = "GPU_CLTM", .states = {{"P1", 0}, {"NO_CLTM", 10}}}},
        0.25, u"NO_CLTM");
    row("a channel without states is ignored",
        {{.group = "GPU Stats", .name = "Histogram", .value = 7}, gpu({{"P1", 1}})}, 1, u"P1");
    row("the dominant name is as it was read", {gpu({{"p1 Boost", 1}})}, 1, u"p1 Boost");
    row("a state without a name", {gpu({{"", 3}, {"OFF", 1}})}, 0.75, u"");
    row("a whole day in one state", {gpu({{"OFF", 0}, {"P1", 24'000'000LL * 86'400}})}, 1, u"P1");
}

void TestChannelTotals::readsGPUStates()
{
    QFETCH(ScriptedChannels, channels);
    QFETCH(QString, dominant);
    const ChipReading reading = readingOf(channels);
    QTEST(reading.gpuActiveFraction, "fraction");
    QCOMPARE(reading.gpuDominantState, std::optional(dominant));
}

void TestChannelTotals::listsGPUStates()
{
    const ChipReading reading =
        readingOf({gpu({{"P1", 10}, {"P2", 20}}), gpu({{"OFF", 5}, {"P1", 70}})});
    QCOMPARE(reading.gpuStateResidency.size(), std::size_t(2));
    QCOMPARE(reading.gpuStateResidency[0].state, u"P1"_s);
    QCOMPARE(reading.gpuStateResidency[0].fraction, 0.8);
    QCOMPARE(reading.gpuStateResidency[1].fraction, 0.2);
}

void TestChannelTotals::readsCPUStates_data()
{
    QTest::addColumn<ScriptedChannels>("channels");
    QTest::addColumn<double>("fraction");
    QTest::addColumn<double>("mhz");

    const auto row = [](const char *name, ScriptedChannels channels, double fraction, double mhz) {
        QTest::newRow(name) << std::move(channels) << fraction << mhz;
    };
    row("the mean by time in each state",
        {cpu("ECPU", {{"IDLE", 60}, {"V0P2", 10}, {"V1P1", 10}, {"V2P0", 20}})}, 0.4, 1425);
    row("performance cores by their own table",
        {cpu("PCPU", {{"IDLE", 50}, {"V0P1", 25}, {"V1P0", 25}})}, 0.5, 1902);
    row("both clusters together",
        {cpu("ECPU", {{"IDLE", 90}, {"V0", 10}}),
         cpu("PCPU", {{"IDLE", 70}, {"V0", 0}, {"V1", 30}})},
        0.2, 2553);
    row("all idle", {cpu("PCPU", {{"DOWN", 50}, {"IDLE", 50}, {"V0", 0}})}, 0, 0);
    row("no time at all", {cpu("PCPU", {{"IDLE", 0}, {"V0", 0}})}, 0, 0);
    row("idle, off and down take no frequency's place",
        {cpu("PCPU", {{"DOWN", 10}, {"V0", 0}, {"Off", 10}, {"idle0", 10}, {"V1", 30}})}, 0.5,
        3204);
    row("a negative residency takes no place either",
        {cpu("PCPU", {{"V?", -1}, {"IDLE", 50}, {"V0", 0}, {"V1", 50}})}, 0.5, 3204);
    row("a state without time does", {cpu("ECPU", {{"V0", 0}, {"V1", 0}, {"V2", 50}})}, 1, 2064);
    row("states beyond the table count for the load alone",
        {cpu("PCPU", {{"IDLE", 40}, {"V0", 20}, {"V1", 0}, {"V2", 40}})}, 0.6, 600);
    row("each channel starts with the first frequency",
        {cpu("PCPU", {{"V0", 0}, {"V1", 10}}), cpu("PCPU1", {{"V0", 10}, {"V1", 0}})}, 1, 1902);
    row("a name of no cluster counts for the load alone", {cpu("PCPM", {{"IDLE", 25}, {"V0", 75}})},
        0.75, 0);
    row("a state that is not idle by name", {cpu("PCPM_IDLE", {{"DOWN", 25}, {"NON_IDLE", 75}})},
        0.75, 0);
    row("the cluster may stand anywhere in the name, in any case",
        {cpu("DIE_1_pcpu1", {{"V0", 0}, {"V1", 1}})}, 1, 3204);
    row("efficiency comes before performance", {cpu("ECPU/PCPU", {{"V0", 0}, {"V1", 1}})}, 1, 972);
    row("nothing but negative residencies", {cpu("ECPU", {{"IDLE", -1}, {"V0", wrongFormat}})}, 0,
        0);
    row("a channel without states", {cpu("ECPU", {})}, 0, 0);
    ScriptedChannel cores = cpu("PCPU000", {{"V0", 100}});
    cores.subgroup = "CPU Core Performance States";
    ScriptedChannel bare = cpu("PCPU", {{"V0", 100}});
    bare.subgroup = "";
    ScriptedChannel lower = cpu("PCPU", {{"V0", 100}});
    lower.subgroup = "cpu complex performance states";
    row("other subgroups are ignored",
        {cores, bare, lower, cpu("PCPU", {{"IDLE", 50}, {"V0", 0}, {"V1", 50}})}, 0.5, 3204);
}

void TestChannelTotals::readsCPUStates()
{
    QFETCH(ScriptedChannels, channels);
    const ChipReading reading = readingOf(channels);
    QTEST(reading.cpuActiveFraction, "fraction");
    QTEST(reading.cpuActiveMHz, "mhz");
}

void TestChannelTotals::ignoresOtherGroups()
{
    ScriptedChannels channels{energy("CPU Energy", 900), gpu({{"P1", 1}}),
                              cpu("PCPU", {{"V0", 1}})};
    for (ScriptedChannel &channel : channels)
        channel.group += " ";
    channels.push_back({.group = "energy model", .name = "CPU Energy", .unit = "J", .value = 1});
    channels.push_back({.group = "", .name = "CPU Energy", .unit = "J", .value = 1});
    const ChipReading reading = readingOf(channels);
    QCOMPARE(totalWatts(reading), 0.0);
    QCOMPARE(reading.gpuActiveFraction, 0.0);
    QCOMPARE(reading.cpuActiveFraction, 0.0);
}

QTEST_APPLESS_MAIN(TestChannelTotals)
#include "tst_ChannelTotals.moc"
