#include "chip/ChipSource_linux.h"

#include "support/AccessWatch.h"
#include "support/FaultyCalls.h"
#include "support/MachineTree.h"
#include "support/Waiting.h"

#include <QTest>

using namespace corvane;
using corvane::test::AccessWatch;
using corvane::test::MachineTree;

using namespace Qt::StringLiterals;

namespace {

QString text(Coverage coverage)
{
    static const QStringList names = {u"absent"_s,    u"asleep"_s,    u"locked"_s, u"unpublished"_s,
                                      u"noLibrary"_s, u"newDriver"_s, u"known"_s};
    return names[int(coverage)];
}

/// "AMD Radeon: load watts memory, bytes".
QString text(const GPUCoverage &gpu)
{
    return gpu.name + u": "_s + text(gpu.load) + u' ' + text(gpu.watts) + u' ' + text(gpu.memory)
        + u", "_s + QString::number(gpu.memoryTotal.value_or(0));
}

const std::string amdCard =
    "sys/devices/pci0000:00/0000:00:03.1/0000:09:00.0/0000:0a:00.0/0000:0b:00.0";
const std::string energy = "sys/devices/virtual/powercap/intel-rapl/intel-rapl:0/energy_uj";

/// A machine that is read a second at a time.
class Machine {
public:
    explicit Machine(const std::string &name)
        : tree(name),
          m_source(openChipSourceBelow(tree.root(), [this] { return m_now; }))
    {
    }

    const MachineTree tree;

    ChipReading after(int seconds)
    {
        ChipReading reading;
        for (int second = 0; second < seconds; ++second) {
            m_now += 1;
            reading = m_source().value();
        }
        return reading;
    }

private:
    double m_now = 500;
    ChipSource m_source;
};

} // namespace

/// What Linux machines tell, and how that changes while they are watched.
class TestMachineCoverage : public QObject {
    Q_OBJECT

private slots:
    void ofMachines_data();
    void ofMachines();
    void readsMemory();
    void readsThePartsOfAPackage();
    void readsAnNPU();
    void energyCountersAreOpenedAndClosed();
    void aCardIsPluggedInAndOut();
    void aDriverIsUnloaded();
    void aCardFallsAsleepAndWakes();
    void isSharedUntilItChanges();
    void aDriverThatNeverAnswersDelaysNothing_data();
    void aDriverThatNeverAnswersDelaysNothing();
    void aLateSensorLeavesThePowerAsItWas();
    void tellsNothingOfSensorsBeforeTheyAnswer();
    void oneSensorOfTheChipIsEnough_data();
    void oneSensorOfTheChipIsEnough();
};

void TestMachineCoverage::ofMachines_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<QString>("watts"); ///< Of CPU, package and machine.
    QTest::addColumn<QString>("npu");   ///< Load and watts.
    QTest::addColumn<QStringList>("gpus");
    QTest::newRow("a desktop with a card of AMD")
        << u"amd-desktop"_s << u"known absent absent "_s << u"absent absent"_s
        << QStringList{
               u"AMD Radeon RX 6700/6700 XT/6750 XT / 6800M…: known known known, 12868124672"_s};
    QTest::newRow("an APU") << u"amd-apu-laptop"_s << u"known absent absent "_s
                            << u"absent absent"_s
                            << QStringList{u"AMD GPU 0: known unpublished known, 8266022912"_s};
    QTest::newRow("an APU with an NPU, on its battery")
        << u"amd-apu-npu-laptop"_s << u"known known known battery"_s << u"known known"_s
        << QStringList{u"AMD Radeon 880M / 890M: known known known, 16975868416"_s};
    QTest::newRow("a laptop of Intel's that is plugged in, its card asleep")
        << u"intel-npu-nvidia-laptop"_s << u"locked absent absent "_s << u"known unpublished"_s
        << QStringList{u"Intel Arc Graphics: known unpublished unpublished, 0"_s,
                       u"NVIDIA GPU 0: noLibrary noLibrary noLibrary, 0"_s};
    QTest::newRow("an Arc card") << u"intel-arc-desktop"_s << u"locked absent absent "_s
                                 << u"absent absent"_s
                                 << QStringList{
                                        u"Intel Arc B580: known known unpublished, 12792627200"_s};
    QTest::newRow("a power supply that measures")
        << u"nvidia-workstation-2"_s << u"locked absent known power supply"_s << u"absent absent"_s
        << QStringList{u"NVIDIA GPU 0: noLibrary noLibrary noLibrary, 0"_s,
                       u"NVIDIA GPU 1: noLibrary noLibrary noLibrary, 0"_s};
    QTest::newRow("a virtual machine") << u"virtual-machine-chip"_s << u"absent absent absent "_s
                                       << u"absent absent"_s << QStringList{};
}

void TestMachineCoverage::ofMachines()
{
    QFETCH(QString, machine);
    Machine watched(machine.toStdString());
    const ChipReading reading = watched.after(2);
    const MachineCoverage &coverage = *reading.coverage;
    QVERIFY(!coverage.isWhole);
    QTEST(text(coverage.cpuWatts) + u' ' + text(coverage.packageWatts) + u' '
              + text(coverage.systemWatts) + u' ' + coverage.systemWattsSource,
          "watts");
    QTEST(text(coverage.npuLoad) + u' ' + text(coverage.npuWatts), "npu");
    QStringList gpus;
    for (const GPUCoverage &gpu : coverage.gpus)
        gpus << text(gpu);
    QTEST(gpus, "gpus");
}

void TestMachineCoverage::readsMemory()
{
    const ChipReading card = Machine("amd-desktop").after(1);
    QCOMPARE(card.gpus.at(0).memoryUsed, std::optional<std::uint64_t>(9'771'048'960));
    QVERIFY(!card.gpus[0].memoryOwnUsed);
    QCOMPARE(card.gpus[0].megahertz, std::optional(2581.0));

    Machine laptop("amd-apu-npu-laptop");
    const ChipReading apu = laptop.after(1);
    QCOMPARE(apu.gpus.at(0).memoryUsed, std::optional<std::uint64_t>(11'661'303'808));
    QCOMPARE(apu.gpus[0].memoryOwnUsed, std::optional<std::uint64_t>(429'916'160));
    const std::string device = "sys/devices/pci0000:00/0000:00:08.1/0000:c1:00.0/";
    for (const char *garbage : {"", "-1\n", "18446744073709551616\n", "none\n", "1 2\n"}) {
        laptop.tree.write(device + "mem_info_gtt_used", garbage);
        QVERIFY(!laptop.after(1).gpus.at(0).memoryUsed);
    }
    laptop.tree.write(device + "mem_info_gtt_used", "16975868416\n"); // More than there is.
    QVERIFY(!laptop.after(1).gpus.at(0).memoryUsed);
}

void TestMachineCoverage::readsThePartsOfAPackage()
{
    Machine laptop("amd-apu-npu-laptop");
    ChipReading reading = laptop.after(1);
    QCOMPARE(reading.packageWatts, std::optional(41.2));
    QCOMPARE(reading.cpuWatts, 9.84);
    QCOMPARE(reading.gpuWatts, 21.63);
    QCOMPARE(reading.systemWatts, std::optional(52.3));

    // The firmware's package is not what the sensor measures: its unit is another one.
    laptop.tree.write(
        "sys/devices/pci0000:00/0000:00:08.1/0000:c1:00.0/hwmon/hwmon5/power1_average",
        "15000000\n");
    reading = laptop.after(1);
    QVERIFY(!reading.packageWatts);
    QCOMPARE(reading.cpuWatts, 15.0);
    QCOMPARE(reading.gpuWatts, 0.0);
    QVERIFY(!reading.npu.value().watts); // It would count twice beside the package.
    QCOMPARE(reading.npu->activeFraction, std::optional(0.17));
}

void TestMachineCoverage::readsAnNPU()
{
    const ChipReading amd = Machine("amd-apu-npu-laptop").after(1);
    QCOMPARE(amd.npu.value().activeFraction, std::optional(0.17));
    QCOMPARE(amd.aneWatts, 1.35);

    Machine laptop("intel-npu-nvidia-laptop");
    const std::string npu = "sys/devices/pci0000:00/0000:00:0b.0/";
    QVERIFY(!laptop.after(1).npu.value().activeFraction); // There is no earlier counter.
    laptop.tree.write(npu + "npu_busy_time_us", "1484567\n");
    ChipReading reading = laptop.after(1);
    QCOMPARE(reading.npu.value().activeFraction, std::optional(0.25));
    QCOMPARE(reading.npu->memoryUsed, std::optional<std::uint64_t>(268'435'456));
    QVERIFY(!reading.npu->megahertz && !reading.npu->watts);
    laptop.tree.write(npu + "npu_busy_time_us", "5\n"); // The driver started again.
    QVERIFY(!laptop.after(1).npu.value().activeFraction);
    laptop.tree.write(npu + "npu_busy_time_us", "busy\n");
    reading = laptop.after(12);
    QCOMPARE(text(reading.coverage->npuLoad), u"unpublished"_s);
    laptop.tree.remove("sys/class/accel/accel0");
    reading = laptop.after(61);
    QVERIFY(!reading.npu);
    QCOMPARE(text(reading.coverage->npuLoad), u"absent"_s);
}

void TestMachineCoverage::energyCountersAreOpenedAndClosed()
{
    Machine machine("intel-arc-desktop");
    QCOMPARE(text(machine.after(1).coverage->cpuWatts), u"locked"_s);
    machine.tree.write(energy, "1000000\n");
    ChipReading reading = machine.after(59); // Opened, but nothing to compare its value with.
    QCOMPARE(text(reading.coverage->cpuWatts), u"locked"_s);
    machine.tree.write(energy, "31000000\n");
    reading = machine.after(1);
    QCOMPARE(text(reading.coverage->cpuWatts), u"known"_s);
    QCOMPARE(reading.cpuWatts, 30.0);
    QVERIFY(!reading.denied.cpuWatts);

    machine.tree.remove(energy);
    int denied = 0;
    for (int second = 0; second < 75; ++second) {
        reading = machine.after(1);
        if (text(reading.coverage->cpuWatts) == u"known"_s)
            denied += reading.denied.cpuWatts ? 1 : 0;
    }
    QCOMPARE(denied, 10); // Shown as missing, not as 0 W, before it counts as locked.
    QCOMPARE(text(reading.coverage->cpuWatts), u"locked"_s);
}

void TestMachineCoverage::aCardIsPluggedInAndOut()
{
    Machine machine("virtual-machine-chip");
    QVERIFY(machine.after(1).coverage->gpus.empty());
    machine.tree.write(amdCard + "/gpu_busy_percent", "50\n");
    machine.tree.write(amdCard + "/mem_busy_percent", "5\n");
    machine.tree.link(amdCard + "/driver", "sys/bus/pci/drivers/amdgpu");
    machine.tree.link("sys/class/drm/card0/device", amdCard);
    ChipReading reading = machine.after(60);
    QCOMPARE(text(reading.coverage->gpus.at(0)), u"AMD GPU 0: known unpublished unpublished, 0"_s);
    QCOMPARE(reading.gpuActiveFraction, 0.5);
    machine.tree.remove("sys/class/drm/card0");
    reading = machine.after(60);
    QVERIFY(reading.coverage->gpus.empty() && reading.gpus.empty());
}

void TestMachineCoverage::aDriverIsUnloaded()
{
    Machine machine("amd-desktop");
    QCOMPARE(machine.after(1).coverage->gpus.size(), std::size_t(1));
    machine.tree.remove(amdCard + "/driver");
    const ChipReading reading = machine.after(60);
    QVERIFY(reading.coverage->gpus.empty() && reading.gpus.empty());
}

void TestMachineCoverage::aCardFallsAsleepAndWakes()
{
    Machine machine("amd-desktop");
    const QString awake = text(machine.after(1).coverage->gpus.at(0));
    machine.tree.write(amdCard + "/power/runtime_status", "suspended\n");
    AccessWatch files(machine.tree.root() + '/' + amdCard);
    ChipReading reading = machine.after(65);
    QVERIFY(reading.gpus.empty());
    QString asleep = awake;
    QCOMPARE(text(reading.coverage->gpus.at(0)),
             asleep.replace(u"known known known"_s, u"asleep asleep asleep"_s));
    QCOMPARE(files.touched(), QStringList{u"power/runtime_status"_s});
    machine.tree.write(amdCard + "/power/runtime_status", "active\n");
    reading = machine.after(1);
    QCOMPARE(text(reading.coverage->gpus.at(0)), awake);
    QVERIFY(reading.gpus.at(0).memoryUsed);
}

void TestMachineCoverage::isSharedUntilItChanges()
{
    Machine machine("amd-apu-npu-laptop");
    const auto coverage = machine.after(2).coverage;
    QCOMPARE(machine.after(120).coverage, coverage);
}

void TestMachineCoverage::aDriverThatNeverAnswersDelaysNothing_data()
{
    QTest::addColumn<std::string>("file");
    QTest::addColumn<bool>("hasGPU");
    QTest::addColumn<bool>("hasTemperature");
    QTest::newRow("of a GPU") << std::string("/gpu_busy_percent") << false << true;
    QTest::newRow("of a sensor") << std::string("/hwmon0/temp2_input") << true << false;
}

/// What that driver tells is absent after a while; all else goes on.
void TestMachineCoverage::aDriverThatNeverAnswersDelaysNothing()
{
    using test::FaultyCalls::Call;
    QFETCH(const std::string, file);
    QFETCH(const bool, hasGPU);
    QFETCH(const bool, hasTemperature);
    const MachineTree tree("amd-desktop");
    double now = 500;
    const ChipSource chip = openChipSourceBelow(tree.root(), [&now] { return now; }, {},
                                                {.first = std::chrono::minutes(1)});
    const ChipReading before = chip().value();
    QCOMPARE(before.gpus.size(), std::size_t(1));
    QVERIFY(before.cpuTempC);

    test::FaultyCalls::stall(Call::read, file);
    now += 1;
    chip();
    test::FaultyCalls::waitForStalled();
    tree.write("proc/stat", "cpu0 1000000 0 0 70000 20 0 0 0 0 0\n");
    now += 3;
    ChipReading blind = chip().value(); // Returns while the driver hangs.
    QVERIFY(blind.cpuActiveFraction > 0.9);
    QCOMPARE(blind.coverage->gpus, before.coverage->gpus);
    const auto isRead = [&] {
        blind = chip().value();
        return !blind.gpus.empty() == hasGPU && blind.cpuTempC.has_value() == hasTemperature;
    };
    TRY_VERIFY(isRead());

    test::FaultyCalls::letGo();
    TRY_VERIFY(!chip()->gpus.empty() && chip()->cpuTempC);
    test::FaultyCalls::clear();
}

/// An answer that is late does not mean that no energy was used.
void TestMachineCoverage::aLateSensorLeavesThePowerAsItWas()
{
    const MachineTree tree("intel-arc-desktop");
    tree.write(energy, "1000000\n");
    double now = 500;
    const ChipSource chip = openChipSourceBelow(tree.root(), [&now] { return now; }, {},
                                                {.first = std::chrono::minutes(1)});
    tree.write(energy, "31000000\n");
    now = 501;
    QCOMPARE(chip()->cpuWatts, 30.0);
    test::FaultyCalls::stall(test::FaultyCalls::Call::read, "/energy_uj");
    for (now = 502; now < 504; ++now)
        QCOMPARE(chip()->cpuWatts, 30.0);
    QVERIFY(chip()->denied.cpuWatts);
    test::FaultyCalls::clear();
}

void TestMachineCoverage::tellsNothingOfSensorsBeforeTheyAnswer()
{
    const MachineTree tree("amd-desktop");
    test::FaultyCalls::stall(test::FaultyCalls::Call::read, "/related_cpus");
    const ChipReading reading =
        openChipSourceBelow(tree.root(), [] { return 500.0; }, {}, {})().value();
    QVERIFY(!reading.cpuTempC && !reading.packageTempC);
    QCOMPARE(reading.coverage->cpuWatts, Coverage::absent);
    QCOMPARE(reading.coverage->cpuTemperature, Coverage::absent);
    QCOMPARE(reading.coverage->cpuFrequency, Coverage::absent);
    QVERIFY(!reading.coverage->cpuFrequencyIsNominal);
    QVERIFY(reading.coverage->systemWattsSource.isEmpty());
    test::FaultyCalls::clear();
}

void TestMachineCoverage::oneSensorOfTheChipIsEnough_data()
{
    QTest::addColumn<std::string>("label");
    QTest::newRow("of a core") << std::string("Core 0\n");
    QTest::newRow("of the package") << std::string("Package id 0\n");
}

void TestMachineCoverage::oneSensorOfTheChipIsEnough()
{
    QFETCH(const std::string, label);
    const MachineTree tree;
    tree.write("sys/class/hwmon/hwmon0/name", "coretemp\n");
    tree.write("sys/class/hwmon/hwmon0/temp1_label", label);
    tree.write("sys/class/hwmon/hwmon0/temp1_input", "50000\n");
    const ChipReading reading = openChipSourceBelow(tree.root())().value();
    QVERIFY(reading.cpuTempC.has_value() != reading.packageTempC.has_value());
    QCOMPARE(reading.coverage->cpuTemperature, Coverage::known);
}

QTEST_GUILESS_MAIN(TestMachineCoverage)
#include "tst_MachineCoverage.moc"
