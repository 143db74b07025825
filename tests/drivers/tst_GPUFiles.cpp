#include "drivers/GPUFiles_linux.h"

#include "support/MachineTree.h"
#include "support/Machines.h"

#include <QTest>

using namespace corvane;
using corvane::test::MachineTree;

namespace {

const std::string slot = "sys/devices/pci0000:00/0000:03:00.0";
const std::string card = "sys/class/drm/card0";

/// The one GPU of a machine.
GPUReading readOnly(const std::string &root, std::size_t place = 0)
{
    return GPUFiles(findGPUDevices(root).at(place)).read(7);
}

/// A discrete card with this driver.
void addCard(const MachineTree &machine, const std::string &driver)
{
    machine.link(slot + "/driver", "sys/bus/pci/drivers/" + driver);
    machine.link(card + "/device", slot);
    machine.write(slot + "/power/runtime_status", "active\n");
}

} // namespace

class TestGPUFiles : public QObject {
    Q_OBJECT

private slots:
    void readsAnAPU();
    void readsADiscreteCardOfAMD();
    void readsIntegratedGraphicsOfIntel();
    void readsAnXeCard();
    void readsAnI915Card();
    void readsTheTemperatureAloneOfNouveau();
    void disabledRenderSleepGivesNoLoad();
    void whatGoesAwayIsAbsent();
    void takesThePresentPowerWithoutAMean();
};

void TestGPUFiles::readsAnAPU()
{
    const GPUReading reading = readOnly(test::machine("amd-apu-laptop"));
    QVERIFY(reading.integrated);
    QCOMPARE(reading.seconds, 7.0);
    QCOMPARE(reading.busyFraction, std::optional(0.37));
    QCOMPARE(reading.state, std::string("1100 MHz"));
    QCOMPARE(reading.packageWatts, std::optional(18.123));
    QVERIFY(!reading.watts);
    QVERIFY(!reading.microjoules);
    QCOMPARE(reading.temperatures, std::vector{52.0});
}

void TestGPUFiles::readsADiscreteCardOfAMD()
{
    const GPUReading reading = readOnly(test::machine("amd-desktop"));
    QVERIFY(!reading.integrated);
    QCOMPARE(reading.busyFraction, std::optional(0.64));
    QCOMPARE(reading.state, std::string("2600 MHz"));
    QCOMPARE(reading.watts, std::optional(143.0));
    QVERIFY(!reading.packageWatts);
    const std::vector temperatures = {61.0, 74.0, 66.0};
    QCOMPARE(reading.temperatures, temperatures);
}

void TestGPUFiles::readsIntegratedGraphicsOfIntel()
{
    const MachineTree machine("intel-hybrid-nvidia");
    const std::string node = "sys/devices/pci0000:00/0000:00:02.0/drm/card1/";
    GPUFiles files(findGPUDevices(machine.root()).at(0));
    const GPUReading reading = files.read(1);
    QVERIFY(!reading.busyFraction);
    QCOMPARE(reading.idleMilliseconds, std::optional<std::uint64_t>(5'000'000));
    QCOMPARE(reading.state, std::string("900 MHz"));
    QVERIFY(!reading.watts && !reading.packageWatts && !reading.microjoules);

    // At rest the actual clock is 0; the requested one then names the state.
    machine.write(node + "gt/gt0/rps_act_freq_mhz", "0\n");
    machine.write(node + "gt/gt0/rps_cur_freq_mhz", "300\n");
    QCOMPARE(files.read(2).state, std::string("300 MHz"));

    machine.remove(node + "gt");
    QCOMPARE(GPUFiles(findGPUDevices(machine.root()).at(0)).read(3).state, std::string("900 MHz"));
}

void TestGPUFiles::readsAnXeCard()
{
    const MachineTree machine;
    addCard(machine, "xe");
    const std::string graphics = slot + "/tile0/gt0/";
    machine.write(graphics + "gtidle/idle_residency_ms", "123456\n");
    machine.write(graphics + "freq0/act_freq", "2050\n");
    machine.write(graphics + "freq0/cur_freq", "2400\n");
    machine.write(slot + "/tile0/gt1/gtidle/idle_residency_ms", "9\n");
    const std::string sensors = slot + "/hwmon/hwmon4/";
    machine.write(sensors + "name", "xe\n");
    machine.write(sensors + "energy1_input", "50000000\n");
    machine.write(sensors + "energy1_label", "pkg\n");
    machine.write(sensors + "energy2_input", "70000000\n");
    machine.write(sensors + "energy2_label", "card\n");
    machine.write(sensors + "temp2_input", "48000\n");
    machine.write(sensors + "temp3_input", "50000\n");

    const GPUReading reading = readOnly(machine.root());
    QCOMPARE(reading.idleMilliseconds, std::optional<std::uint64_t>(123'456));
    QCOMPARE(reading.state, std::string("2100 MHz"));
    QCOMPARE(reading.microjoules, std::optional<std::uint64_t>(70'000'000));
    const std::vector temperatures = {48.0, 50.0};
    QCOMPARE(reading.temperatures, temperatures);

    machine.remove(sensors + "energy2_label");
    machine.remove(sensors + "energy2_input");
    QCOMPARE(readOnly(machine.root()).microjoules, std::optional<std::uint64_t>(50'000'000));
}

void TestGPUFiles::readsAnI915Card()
{
    const MachineTree machine;
    addCard(machine, "i915");
    machine.write(card + "/power/rc6_residency_ms", "777\n");
    machine.write(card + "/gt_act_freq_mhz", "1000\n");
    machine.write(slot + "/hwmon/hwmon2/name", "i915_gt0\n");
    machine.write(slot + "/hwmon/hwmon2/energy1_input", "1\n");
    machine.write(slot + "/hwmon/hwmon3/name", "i915\n");
    machine.write(slot + "/hwmon/hwmon3/energy1_input", "2\n");
    const GPUReading reading = readOnly(machine.root());
    QCOMPARE(reading.idleMilliseconds, std::optional<std::uint64_t>(777));
    QCOMPARE(reading.state, std::string("1000 MHz"));
    QCOMPARE(reading.microjoules, std::optional<std::uint64_t>(2)); // Of the whole card.
}

void TestGPUFiles::readsTheTemperatureAloneOfNouveau()
{
    const MachineTree machine;
    addCard(machine, "nouveau");
    machine.write(card + "/power/rc6_residency_ms", "777\n"); // Another driver's.
    machine.write(slot + "/hwmon/hwmon2/name", "nouveau\n");
    machine.write(slot + "/hwmon/hwmon2/temp1_input", "51000\n");
    const GPUReading reading = readOnly(machine.root());
    QVERIFY(!reading.busyFraction);
    QVERIFY(!reading.idleMilliseconds);
    QCOMPARE(reading.temperatures, std::vector{51.0});
}

void TestGPUFiles::disabledRenderSleepGivesNoLoad()
{
    const MachineTree machine("intel-hybrid-nvidia");
    machine.write("sys/devices/pci0000:00/0000:00:02.0/drm/card1/power/rc6_enable", "0\n");
    QVERIFY(!readOnly(machine.root()).idleMilliseconds);
}

void TestGPUFiles::whatGoesAwayIsAbsent()
{
    const MachineTree machine("amd-desktop");
    const auto devices = findGPUDevices(machine.root());
    machine.remove("sys/devices/pci0000:00/0000:00:03.1");
    const GPUReading reading = GPUFiles(devices.at(0)).read(1);
    QVERIFY(!reading.busyFraction && !reading.watts && reading.state.empty());
    QVERIFY(reading.temperatures.empty());
}

void TestGPUFiles::takesThePresentPowerWithoutAMean()
{
    const MachineTree machine("amd-desktop");
    const std::string sensors =
        "sys/devices/pci0000:00/0000:00:03.1/0000:09:00.0/0000:0a:00.0/0000:0b:00.0/hwmon/hwmon1/";
    machine.write(sensors + "power1_input", "20000000\n");
    QCOMPARE(readOnly(machine.root()).watts, std::optional(143.0));
    machine.remove(sensors + "power1_average");
    QCOMPARE(readOnly(machine.root()).watts, std::optional(20.0));
}

QTEST_GUILESS_MAIN(TestGPUFiles)
#include "tst_GPUFiles.moc"
