#include "chip/ChipSource_linux.h"

#include "platform/KernelFile_linux.h"
#include "support/AccessWatch.h"
#include "support/MachineTree.h"
#include "support/Machines.h"

#include <QTest>

#include <fcntl.h>

using namespace corvane;
using corvane::test::AccessWatch;
using corvane::test::MachineTree;

using namespace Qt::StringLiterals;

namespace {

/// One line of /proc/stat.
std::string cpuLine(int cpu, int user, int idle)
{
    return "cpu" + std::to_string(cpu) + ' ' + std::to_string(user) + " 0 0 " + std::to_string(idle)
        + " 0 0 0 0 0 0\n";
}

/// The times of that many CPUs, all alike.
std::string cpuTimes(int cpus, int busy, int idle)
{
    std::string text;
    for (int cpu = 0; cpu < cpus; ++cpu)
        text += cpuLine(cpu, busy, idle);
    return text;
}

bool isNear(double actual, double expected)
{
    return qAbs(actual - expected) < 1e-6;
}

const std::string policies = "sys/devices/system/cpu/cpufreq/policy";
const std::string amdCard =
    "sys/devices/pci0000:00/0000:00:03.1/0000:09:00.0/0000:0a:00.0/0000:0b:00.0";

/// A machine that is read a second at a time.
class Chip {
public:
    explicit Chip(const std::string &machine)
        : tree(machine),
          m_source(openChipSourceBelow(tree.root(), [this] { return m_now; }))
    {
    }

    const MachineTree tree;

    /// The second that ends now.
    ChipReading reading()
    {
        m_now += 1;
        return m_source().value();
    }

private:
    double m_now = 500;
    ChipSource m_source;
};

/// A policy for each CPU, and two devices with 288 sensors each.
void putLargeMachine(const MachineTree &tree, int cpus, bool countsTimes)
{
    tree.write("sys/devices/system/cpu/present", "0-" + std::to_string(cpus - 1) + '\n');
    for (int cpu = 0; cpu < cpus; ++cpu) {
        const std::string policy = policies + std::to_string(cpu);
        tree.write(policy + "/related_cpus", std::to_string(cpu) + '\n');
        tree.write(policy + "/scaling_available_frequencies", "3000000 2000000 \n");
        tree.write(policy + "/scaling_cur_freq", "2000000\n");
        if (countsTimes)
            tree.write(policy + "/stats/time_in_state", "1000000 500\n3000000 500\n");
    }
    for (const std::string monitor : {"sys/class/hwmon/hwmon0/", "sys/class/hwmon/hwmon1/"}) {
        tree.write(monitor + "name", "coretemp\n");
        for (int sensor = 2; sensor < 290; ++sensor) {
            const std::string stem = monitor + "temp" + std::to_string(sensor);
            tree.write(stem + "_label", "Core " + std::to_string(sensor - 2) + '\n');
            tree.write(stem + "_input", "50000\n");
        }
    }
}

int openDescriptors()
{
    int count = 0;
    for (int descriptor = 0; descriptor < 4096; ++descriptor)
        count += fcntl(descriptor, F_GETFD) >= 0 ? 1 : 0;
    return count;
}

} // namespace

/// All readers put together; each of them has a test of its own.
class TestChipSource : public QObject {
    Q_OBJECT

private slots:
    void hasAReadingWithoutAnyFile_data();
    void hasAReadingWithoutAnyFile();
    void readsMachines_data();
    void readsMachines();
    void showsNoLoadWhileTheTimesCannotBeRead();
    void measuresByItsClock();
    void copiesGoOnTogether();
    void aDesktopWithACard();
    void anAPU();
    void aHybridLaptop();
    void aVirtualMachine();
    void aSleepingGPUIsNotTouched();
    void keepsEachGPU();
    void aLargeMachineNeedsFewDescriptors_data();
    void aLargeMachineNeedsFewDescriptors();
};

void TestChipSource::hasAReadingWithoutAnyFile_data()
{
    QTest::addColumn<QString>("machine");
    QTest::newRow("an empty folder") << QString();
    QTest::newRow("no such folder") << u"no-such-machine"_s;
    QTest::newRow("memory and times alone") << u"kernel-without-psi"_s;
}

void TestChipSource::hasAReadingWithoutAnyFile()
{
    QFETCH(QString, machine);
    const MachineTree empty;
    const std::string root =
        machine.isEmpty() ? empty.root() : test::machine(machine.toStdString());
    const ChipSource chip = openChipSourceBelow(root);
    const auto reading = chip();
    QVERIFY(reading);
    QVERIFY(reading->gpus.empty() && !reading->npu && !reading->systemWatts);
    const MachineCoverage nothing = {.isWhole = false};
    QVERIFY(*reading->coverage == nothing);
    QCOMPARE(chip()->coverage, reading->coverage); // Shared while nothing changes.
}

void TestChipSource::readsMachines_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<int>("cpus");
    QTest::addColumn<std::optional<double>>("gpuActiveFraction");
    QTest::addColumn<QString>("gpuState");
    QTest::addColumn<std::optional<double>>("cpuTempC");
    QTest::addColumn<std::optional<double>>("gpuTempC");
    QTest::addColumn<std::optional<double>>("packageTempC");
    const std::optional<double> none;
    const auto known = [](double value) { return std::optional(value); };
    QTest::newRow("an APU") << u"amd-apu-laptop"_s << 12 << known(0.37) << u"1100 MHz"_s
                            << known(54.125) << known(52) << none;
    QTest::newRow("a desktop with a card")
        << u"amd-desktop"_s << 12 << known(0.64) << u"2600 MHz"_s << known(56) << known(67) << none;
    // The load of its integrated graphics needs an idle time, which stands still here.
    QTest::newRow("a laptop of Intel's, its NVIDIA asleep")
        << u"intel-hybrid-nvidia"_s << 12 << none << u""_s << known(53.5) << none << known(58);
    QTest::newRow("Apple's chip") << u"apple-silicon-linux"_s << 8 << known(0) << u""_s << none
                                  << none << none;
    QTest::newRow("a board") << u"arm-board-chip"_s << 8 << known(0) << u""_s << known(47.6145)
                             << known(45.307) << none;
    QTest::newRow("a virtual machine")
        << u"virtual-machine-chip"_s << 2 << known(0) << u""_s << none << none << none;
}

void TestChipSource::readsMachines()
{
    QFETCH(QString, machine);
    QFETCH(int, cpus);
    QFETCH(std::optional<double>, gpuActiveFraction);
    const MachineTree tree(machine.toStdString());
    tree.write("proc/stat", cpuTimes(cpus, 0, 0));
    const ChipSource chip = openChipSourceBelow(tree.root());
    QVERIFY(chip);

    tree.write("proc/stat", cpuTimes(cpus, 10, 30));
    const auto first = chip();
    QVERIFY(first);
    QCOMPARE(first->cpuActiveFraction, 0.25); // Since it was opened.
    QCOMPARE(first->cpuCoreUtilizations, std::vector<double>(std::size_t(cpus), 0.0));
    if (gpuActiveFraction) {
        QCOMPARE(first->gpuActiveFraction, *gpuActiveFraction);
        QTEST(first->gpuDominantState.value_or(QString()), "gpuState");
    }
    QTEST(first->cpuTempC, "cpuTempC");
    QTEST(first->gpuTempC, "gpuTempC");
    QTEST(first->packageTempC, "packageTempC");
    QVERIFY(!first->aneTempC);
    QCOMPARE(first->aneWatts, 0.0);

    tree.write("proc/stat", cpuTimes(cpus, 40, 40));
    const auto second = chip();
    QVERIFY(second);
    QCOMPARE(second->cpuActiveFraction, 0.75);
    QCOMPARE(second->cpuCoreUtilizations, std::vector<double>(std::size_t(cpus), 0.75));
}

void TestChipSource::showsNoLoadWhileTheTimesCannotBeRead()
{
    const MachineTree tree("virtual-machine-chip");
    tree.write("proc/stat", cpuTimes(2, 0, 0));
    const ChipSource chip = openChipSourceBelow(tree.root());
    tree.write("proc/stat", cpuTimes(2, 50, 50));
    QCOMPARE(chip()->cpuActiveFraction, 0.5);

    tree.write("proc/stat", "");
    const auto blind = chip();
    QVERIFY(blind);
    QCOMPARE(blind->cpuActiveFraction, 0.0);
    QVERIFY(blind->cpuCoreUtilizations.empty());

    tree.write("proc/stat", cpuTimes(2, 80, 80));
    QCOMPARE(chip()->cpuCoreUtilizations, (std::vector<double>{0.5, 0.5})); // Since the last good.
    tree.write("proc/stat", cpuTimes(2, 170, 90));
    QCOMPARE(chip()->cpuActiveFraction, 0.9);
}

void TestChipSource::measuresByItsClock()
{
    const MachineTree tree("amd-desktop");
    const std::string energy = "sys/devices/virtual/powercap/intel-rapl/intel-rapl:0/energy_uj";
    tree.write(energy, "1000000\n");
    double now = 50;
    const ChipSource chip = openChipSourceBelow(tree.root(), [&now] { return now; });
    tree.write(energy, "61000000\n");
    now = 52;
    QCOMPARE(chip()->cpuWatts, 30.0); // 60 J in two seconds.
}

void TestChipSource::copiesGoOnTogether()
{
    const MachineTree tree("virtual-machine-chip");
    tree.write("proc/stat", cpuTimes(2, 0, 0));
    ChipSource copy;
    {
        const ChipSource chip = openChipSourceBelow(tree.root());
        copy = chip;
        tree.write("proc/stat", cpuTimes(2, 50, 50));
        QCOMPARE(chip()->cpuActiveFraction, 0.5);
    }
    tree.write("proc/stat", cpuTimes(2, 50, 150));
    QCOMPARE(copy()->cpuActiveFraction, 0.0);
}

void TestChipSource::aDesktopWithACard()
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
    chip.reading();
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

void TestChipSource::anAPU()
{
    Chip chip("amd-apu-laptop");
    std::string stat = cpuLine(0, 2600, 80030); // All the others stand.
    chip.tree.write("proc/stat", stat);
    chip.reading();
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

void TestChipSource::aHybridLaptop()
{
    Chip chip("intel-hybrid-nvidia");
    chip.tree.write("proc/stat", cpuLine(0, 100, 100) + cpuLine(11, 100, 100));
    chip.reading();
    chip.tree.write("proc/stat", cpuLine(0, 150, 150) + cpuLine(11, 125, 175));
    chip.tree.write(policies + "0/scaling_cur_freq", "4390000\n");
    chip.tree.write(policies + "11/scaling_cur_freq", "3300000\n");
    chip.tree.write("sys/devices/pci0000:00/0000:00:02.0/drm/card1/gt/gt0/rc6_residency_ms",
                    "5000250\n");
    ChipReading reading = chip.reading();
    QVERIFY(isNear(reading.cpuActiveFraction, 75.0 / 200));
    QVERIFY(isNear(reading.cpuActiveMHz, (50.0 * 4400 + 25.0 * 3300) / 75));

    chip.tree.write("proc/stat", cpuLine(0, 200, 200) + cpuLine(11, 150, 250));
    chip.tree.write("sys/devices/pci0000:00/0000:00:02.0/drm/card1/gt/gt0/rc6_residency_ms",
                    "5000500\n");
    reading = chip.reading();
    QVERIFY(isNear(reading.cpuActiveFraction, 75.0 / 200));
    QVERIFY(isNear(reading.cpuActiveMHz, (50.0 * 4400 + 25.0 * 3300) / 75));
    QVERIFY(isNear(reading.gpuActiveFraction, 0.75));
    QCOMPARE(reading.gpuDominantState, std::optional(u"900 MHz"_s));
    QCOMPARE(reading.cpuWatts, 0.0); // Only root may read the energy.
}

void TestChipSource::aVirtualMachine()
{
    Chip chip("virtual-machine-chip");
    chip.tree.write("proc/stat", cpuLine(0, 0, 0) + cpuLine(1, 0, 0));
    chip.reading();
    chip.tree.write("proc/stat", cpuLine(0, 90, 10) + cpuLine(1, 0, 100));
    const ChipReading reading = chip.reading();
    QVERIFY(isNear(reading.cpuActiveFraction, 0.45));
    QVERIFY(isNear(reading.cpuActiveMHz, 2596.142));
    QCOMPARE(reading.cpuWatts, 0.0);
    QCOMPARE(reading.gpuWatts, 0.0);
    QCOMPARE(reading.gpuActiveFraction, 0.0);
}

void TestChipSource::aSleepingGPUIsNotTouched()
{
    Chip chip("amd-desktop");
    chip.tree.write(amdCard + "/power/runtime_status", "suspended\n");
    AccessWatch files(chip.tree.root() + '/' + amdCard);
    const ChipReading reading = chip.reading();
    QVERIFY(reading.gpus.empty());
    QVERIFY(!reading.gpuTempC);
    QCOMPARE(reading.cpuTempC, std::optional(56.0));
    // Its numbers in the list of names are kept by the kernel, not by the card.
    const QStringList harmless = {u"device"_s, u"power/runtime_status"_s, u"vendor"_s};
    QCOMPARE(files.touched(), harmless);
}

void TestChipSource::keepsEachGPU()
{
    Chip chip("amd-desktop");
    const ChipReading reading = chip.reading();
    QCOMPARE(reading.gpus.size(), std::size_t(1));
    const GPUMetrics &gpu = reading.gpus.front();
    QVERIFY(gpu.device.endsWith(QString::fromStdString(amdCard)));
    QVERIFY(!gpu.integrated);
    QCOMPARE(gpu.activeFraction, std::optional(0.64));
    QCOMPARE(gpu.state, std::optional(u"2600 MHz"_s));
    QCOMPARE(gpu.watts, std::optional(143.0));
    QCOMPARE(gpu.tempC, std::optional(67.0));
}

void TestChipSource::aLargeMachineNeedsFewDescriptors_data()
{
    QTest::addColumn<int>("cpus");
    QTest::addColumn<bool>("countsTimes");
    QTest::addColumn<int>("readings");
    QTest::newRow("two sockets, the present frequency alone") << 576 << false << 64;
    QTest::newRow("1,024 CPUs, the times in their states") << 1024 << true << 2;
}

/// Each CPU has a policy of its own, and each reading another busiest CPU.
void TestChipSource::aLargeMachineNeedsFewDescriptors()
{
    QFETCH(const int, cpus);
    QFETCH(const bool, countsTimes);
    QFETCH(const int, readings);
    const MachineTree tree;
    putLargeMachine(tree, cpus, countsTimes);
    std::string times = cpuTimes(cpus, 0, 0);
    tree.write("proc/stat", times);
    const int before = openDescriptors();
    double now = 500;
    const ChipSource chip = openChipSourceBelow(tree.root(), [&now] { return now; });
    QVERIFY(chip);
    for (int cpu = 0; cpu < cpus; cpu += cpus / readings) {
        const std::string idle = cpuLine(cpu, 0, 0);
        times.replace(times.find(idle), idle.size(), cpuLine(cpu, 100, 0));
        tree.write("proc/stat", times);
        now += 1;
        const ChipReading reading = chip().value();
        QCOMPARE(reading.cpuTempC, std::optional<double>(50));
        QCOMPARE(reading.cpuActiveMHz, countsTimes ? 0. : 2000.);
        QVERIFY(openDescriptors() - before < KernelFile::mostKeptOpen + 12);
    }
}

QTEST_GUILESS_MAIN(TestChipSource)
#include "tst_ChipSource.moc"
