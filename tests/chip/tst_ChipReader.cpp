#include "chip/ChipReader.h"

#include "chip/ChannelTotals.h"
#include "support/MachineTree.h"

#include <QTest>

using namespace corvane;
using corvane::test::MachineTree;

using namespace Qt::StringLiterals;

namespace {

const std::string policies = "sys/devices/system/cpu/cpufreq/policy";

/// A machine of which snapshots are taken a second apart.
class Chip {
public:
    explicit Chip(const std::string &machine, ChipReader::Parts parts = {})
        : tree(machine),
          m_gpus(std::make_shared<GPUWatch>(tree.root(), std::string(), [this] { return m_now; })),
          m_reader(tree.root(), parts, m_gpus, [this] { return m_now; }),
          m_last(m_reader.read())
    {
    }

    const MachineTree tree;

    /// The channels of the second that ends now.
    std::vector<ChipChannel> channels()
    {
        m_now += 1;
        ChipSnapshot next = m_reader.read();
        auto channels = chipChannels(m_last, next, m_reader.clusters());
        m_last = std::move(next);
        return channels;
    }

    /// What the sampler makes of them.
    ChipReading reading()
    {
        const FrequencyTables tables = readFrequencyTables(tree.root());
        ChannelTotals totals(tables);
        for (const ChipChannel &channel : channels()) {
            std::vector<ChannelState> states;
            for (const ChipChannel::State &state : channel.states)
                states.push_back({state.name, state.residency});
            totals.add({.group = channel.group,
                        .subgroup = channel.subgroup,
                        .name = channel.name,
                        .unit = channel.unit,
                        .value = channel.value,
                        .states = states});
        }
        return totals.reading(1);
    }

    bool hasAnything() const { return m_reader.hasAnything(); }

private:
    double m_now = 500;
    std::shared_ptr<GPUWatch> m_gpus;
    ChipReader m_reader;
    ChipSnapshot m_last;
};

/// One line of /proc/stat.
std::string cpuLine(int cpu, int user, int idle)
{
    return "cpu" + std::to_string(cpu) + ' ' + std::to_string(user) + " 0 0 " + std::to_string(idle)
        + " 0 0 0 0 0 0\n";
}

bool isNear(double actual, double expected)
{
    return qAbs(actual - expected) < 1e-6;
}

} // namespace

class TestChipReader : public QObject {
    Q_OBJECT

private slots:
    void aDesktopWithACard();
    void anAPU();
    void aHybridLaptop();
    void aBoard();
    void appleSilicon();
    void aVirtualMachine();
    void readsThePartsThatItIsAskedFor();
    void anOfflineCPUAddsNothing();
    void whatCannotBeReadGivesNoChannel();
    void energyThatBecomesReadableAddsNothingOfThePast();
};

void TestChipReader::aDesktopWithACard()
{
    Chip chip("amd-desktop");
    std::string before;
    std::string after;
    for (int cpu = 0; cpu < 12; ++cpu) {
        before += cpuLine(cpu, 3000, 70000);
        after += cpuLine(cpu, 3040, 70060);
        chip.tree.write(policies + std::to_string(cpu) + "/stats/time_in_state",
                        "3600000 40075\n2800000 10000\n2200000 23870\n");
    }
    chip.tree.write("proc/stat", before);
    chip.channels();
    chip.tree.write("proc/stat", after);
    for (int cpu = 0; cpu < 12; ++cpu)
        chip.tree.write(policies + std::to_string(cpu) + "/stats/time_in_state",
                        "3600000 40150\n2800000 10000\n2200000 23895\n");
    chip.tree.write("sys/devices/virtual/powercap/intel-rapl/intel-rapl:0/energy_uj",
                    "41032500000\n");
    const ChipReading reading = chip.reading();
    QVERIFY(isNear(reading.cpuWatts, 32.5));
    QVERIFY(isNear(reading.gpuWatts, 143));
    QVERIFY(isNear(reading.cpuActiveFraction, 0.4));
    QVERIFY(isNear(reading.cpuActiveMHz, 0.75 * 3600 + 0.25 * 2200));
    QVERIFY(isNear(reading.gpuActiveFraction, 0.64));
    QCOMPARE(reading.gpuDominantState, std::optional(u"2600 MHz"_s));
}

void TestChipReader::anAPU()
{
    Chip chip("amd-apu-laptop");
    std::string stat = cpuLine(0, 2600, 80030); // All the others stand.
    chip.tree.write("proc/stat", stat);
    chip.channels();
    stat = cpuLine(0, 2690, 80040);
    chip.tree.write("proc/stat", stat);
    chip.tree.write(policies + "0/scaling_cur_freq", "4711000\n");
    chip.tree.write(policies + "5/scaling_cur_freq", "400000\n");
    const ChipReading reading = chip.reading();
    QVERIFY(isNear(reading.cpuWatts, 18.123)); // Of the whole socket.
    QCOMPARE(reading.gpuWatts, 0.0);
    QVERIFY(isNear(reading.cpuActiveFraction, 0.9));
    QVERIFY(isNear(reading.cpuActiveMHz, 4700));
    QVERIFY(isNear(reading.gpuActiveFraction, 0.37));
    QCOMPARE(reading.gpuDominantState, std::optional(u"1100 MHz"_s));
}

void TestChipReader::aHybridLaptop()
{
    Chip chip("intel-hybrid-nvidia");
    chip.tree.write("proc/stat", cpuLine(0, 100, 100) + cpuLine(11, 100, 100));
    chip.channels();
    chip.tree.write("proc/stat", cpuLine(0, 150, 150) + cpuLine(11, 125, 175));
    chip.tree.write(policies + "0/scaling_cur_freq", "4390000\n");
    chip.tree.write(policies + "11/scaling_cur_freq", "3300000\n");
    chip.tree.write("sys/devices/pci0000:00/0000:00:02.0/drm/card1/gt/gt0/rc6_residency_ms",
                    "5000250\n");
    const auto channels = chip.channels();
    QCOMPARE(channels.size(), std::size_t(3)); // No energy: the kernel keeps it to itself.
    QCOMPARE(channels[1].name, std::string("PCPU"));
    QCOMPARE(channels[2].name, std::string("ECPU"));
    QCOMPARE(channels[1].states.front().residency, std::int64_t(50'000'000));
    QCOMPARE(channels[1].states.back().name, std::string("4400 MHz"));
    QCOMPARE(channels[1].states.back().residency, std::int64_t(50'000'000));
    QCOMPARE(channels[2].states.back().residency, std::int64_t(25'000'000));

    chip.tree.write("proc/stat", cpuLine(0, 200, 200) + cpuLine(11, 150, 250));
    chip.tree.write("sys/devices/pci0000:00/0000:00:02.0/drm/card1/gt/gt0/rc6_residency_ms",
                    "5000500\n");
    const ChipReading reading = chip.reading();
    QVERIFY(isNear(reading.cpuActiveFraction, 75.0 / 200));
    QVERIFY(isNear(reading.cpuActiveMHz, (50.0 * 4400 + 25.0 * 3300) / 75));
    QVERIFY(isNear(reading.gpuActiveFraction, 0.75));
    QCOMPARE(reading.gpuDominantState, std::optional(u"900 MHz"_s));
    QCOMPARE(reading.cpuWatts, 0.0);
}

void TestChipReader::aBoard()
{
    Chip chip("arm-board-chip");
    const auto stat = [](int small, int large) {
        std::string text;
        for (int cpu = 0; cpu < 8; ++cpu)
            text += cpuLine(cpu, cpu < 4 ? small : large, 1000);
        return text;
    };
    chip.tree.write("proc/stat", stat(0, 0));
    chip.channels();
    chip.tree.write("proc/stat", stat(10, 30));
    chip.tree.write(policies + "0/stats/time_in_state", "408000 1000\n1800000 1100\n");
    chip.tree.write(policies + "4/stats/time_in_state", "408000 550\n2400000 550\n");
    chip.tree.write(policies + "6/stats/time_in_state", "408000 500\n2256000 600\n");
    const ChipReading reading = chip.reading();
    // Times of the other states are gone, which makes their sum fall: all count from nothing.
    const double small = (1000 * 408 + 1100 * 1800) / 2100.0;
    const double large = (550 * 408 + 550 * 2400) / 1100.0;
    const double middle = (500 * 408 + 600 * 2256) / 1100.0;
    QVERIFY(isNear(reading.cpuActiveFraction, 1));
    QVERIFY(qAbs(reading.cpuActiveMHz - (40 * small + 60 * large + 60 * middle) / 160) < 0.001);
    QVERIFY(reading.gpuStateResidency.empty());
}

void TestChipReader::appleSilicon()
{
    Chip chip("apple-silicon-linux");
    chip.channels();
    const std::string file = policies + "4/stats/time_in_state";
    chip.tree.write("proc/stat", cpuLine(4, 850, 50050));
    std::string times;
    for (const char *state :
         {"600000", "828000", "1056000", "1284000", "1500000", "1728000", "1956000", "2184000",
          "2388000", "2592000", "2772000", "2988000", "3096000", "3144000"})
        times += std::string(state) + " 700\n";
    chip.tree.write(file, times + "3204000 800\n");
    const ChipReading reading = chip.reading();
    QVERIFY(isNear(reading.cpuActiveFraction, 0.5));
    QVERIFY(isNear(reading.cpuActiveMHz, 3204));
    QCOMPARE(reading.cpuWatts, 0.0);
    QCOMPARE(reading.gpuDominantState, std::optional(QString()));
}

void TestChipReader::aVirtualMachine()
{
    Chip chip("virtual-machine-chip");
    chip.tree.write("proc/stat", cpuLine(0, 0, 0) + cpuLine(1, 0, 0));
    chip.channels();
    chip.tree.write("proc/stat", cpuLine(0, 90, 10) + cpuLine(1, 0, 100));
    const ChipReading reading = chip.reading();
    QVERIFY(isNear(reading.cpuActiveFraction, 0.45));
    QVERIFY(isNear(reading.cpuActiveMHz, 2596.142));
    QCOMPARE(reading.cpuWatts, 0.0);
    QCOMPARE(reading.gpuWatts, 0.0);
    QCOMPARE(reading.gpuActiveFraction, 0.0);
}

void TestChipReader::readsThePartsThatItIsAskedFor()
{
    QCOMPARE(Chip("amd-desktop").channels().size(), std::size_t(4));
    const auto cpu = Chip("amd-desktop", {.gpu = false, .energy = false}).channels();
    QCOMPARE(cpu.size(), std::size_t(1));
    QVERIFY(cpu[0].group == ChipChannelGroup::cpu);
    QVERIFY(Chip("amd-desktop", {.cpu = false, .energy = false}).hasAnything());
    QVERIFY(!Chip("arm-board-chip", {.cpu = false}).hasAnything());
    QVERIFY(Chip("intel-hybrid-nvidia", {.cpu = false, .gpu = false}).hasAnything());
}

void TestChipReader::anOfflineCPUAddsNothing()
{
    Chip chip("virtual-machine-chip");
    chip.tree.write("proc/stat", cpuLine(0, 0, 0) + cpuLine(1, 500, 9000));
    chip.channels();
    chip.tree.write("proc/stat", cpuLine(0, 50, 50));
    QVERIFY(isNear(chip.reading().cpuActiveFraction, 0.5));
    chip.tree.write("proc/stat", cpuLine(0, 100, 100) + cpuLine(1, 500, 9000));
    QVERIFY(isNear(chip.reading().cpuActiveFraction, 0.5));
}

void TestChipReader::whatCannotBeReadGivesNoChannel()
{
    Chip chip("virtual-machine-chip");
    chip.tree.write("proc/stat", "");
    QVERIFY(chip.channels().empty());
    chip.tree.write("proc/stat", "nonsense\n");
    QVERIFY(chip.channels().empty());
}

void TestChipReader::energyThatBecomesReadableAddsNothingOfThePast()
{
    Chip chip("intel-hybrid-nvidia");
    const std::string file = "sys/devices/virtual/powercap/intel-rapl/intel-rapl:0/energy_uj";
    chip.tree.write(file, "900000000000\n");
    for (int second = 0; second < 60; ++second)
        QCOMPARE(chip.reading().cpuWatts, 0.0);
    chip.tree.write(file, "900015000000\n");
    QVERIFY(isNear(chip.reading().cpuWatts, 15));
}

QTEST_GUILESS_MAIN(TestChipReader)
#include "tst_ChipReader.moc"
