#include "chip/ThermalBridge.h"

#include "support/AccessWatch.h"
#include "support/MachineTree.h"
#include "support/Machines.h"

#include <QTest>

using namespace corvane;
using corvane::test::AccessWatch;
using corvane::test::MachineTree;

using namespace Qt::StringLiterals;

using Temperatures = std::map<std::string, double>;

Q_DECLARE_METATYPE(Temperatures)

namespace {

const std::string monitors = "sys/devices/virtual/hwmon/";
const std::string zones = "sys/devices/virtual/thermal/";
const std::string amdCard =
    "sys/devices/pci0000:00/0000:00:03.1/0000:09:00.0/0000:0a:00.0/0000:0b:00.0";

} // namespace

class TestThermalBridge : public QObject {
    Q_OBJECT

private slots:
    void readsMachines_data();
    void readsMachines();
    void followsTheSensors();
    void aSensorThatFailsIsLeftOut();
    void zonesStandInBestFirst();
    void theHottestZoneOfAKindCounts();
    void aSleepingGPUIsNotTouched();
    void onlyTheNameOfOtherDevicesIsRead();
    void findsADriverThatComesLate();
};

void TestThermalBridge::readsMachines_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<Temperatures>("temperatures");
    QTest::newRow("a laptop of Intel's, its NVIDIA asleep")
        << u"intel-hybrid-nvidia"_s
        << Temperatures{
               {"SOC 1", 58}, {"PACC 1", 55}, {"PACC 2", 57}, {"PACC 3", 51}, {"PACC 4", 51}};
    QTest::newRow("an APU") << u"amd-apu-laptop"_s
                            << Temperatures{{"PACC 1", 54.125}, {"GPU 1", 52}};
    QTest::newRow("a desktop with a card")
        << u"amd-desktop"_s
        << Temperatures{
               {"PACC 1", 56.25}, {"PACC 2", 55.75}, {"GPU 1", 61}, {"GPU 2", 74}, {"GPU 3", 66}};
    QTest::newRow("a board") << u"arm-board-chip"_s
                             << Temperatures{{"PACC 1", 47.153},
                                             {"PACC 2", 48.076},
                                             {"PACC 3", 48.076},
                                             {"PACC 4", 47.153},
                                             {"GPU 1", 45.307}};
    QTest::newRow("a machine whose sensors belong to no part")
        << u"apple-silicon-linux"_s << Temperatures{};
    QTest::newRow("a virtual machine") << u"virtual-machine-chip"_s << Temperatures{};
}

void TestThermalBridge::readsMachines()
{
    QFETCH(QString, machine);
    ThermalBridge bridge(test::machine(machine.toStdString()));
    QTEST(bridge.readAllTemperatures(), "temperatures");
}

void TestThermalBridge::followsTheSensors()
{
    const MachineTree tree("amd-apu-laptop");
    ThermalBridge bridge(tree.root());
    QCOMPARE(bridge.readAllTemperatures().at("PACC 1"), 54.125);
    tree.write(monitors + "hwmon3/temp1_input", "91500\n");
    QCOMPARE(bridge.readAllTemperatures().at("PACC 1"), 91.5);
}

void TestThermalBridge::aSensorThatFailsIsLeftOut()
{
    const MachineTree tree("intel-hybrid-nvidia");
    ThermalBridge bridge(tree.root());
    tree.write(monitors + "hwmon2/temp2_input", "");
    tree.write(monitors + "hwmon2/temp10_input", "-128000\n");
    const Temperatures expected = {{"SOC 1", 58}, {"PACC 3", 51}, {"PACC 4", 51}};
    QCOMPARE(bridge.readAllTemperatures(), expected);
}

void TestThermalBridge::zonesStandInBestFirst()
{
    const MachineTree tree("intel-hybrid-nvidia");
    tree.remove("sys/class/hwmon/hwmon2");
    tree.write(zones + "thermal_zone1/temp", "44000\n");
    ThermalBridge bridge(tree.root());
    QCOMPARE(bridge.readAllTemperatures(), (Temperatures{{"SOC 1", 58}}));
    tree.write(zones + "thermal_zone2/temp", "");
    QCOMPARE(bridge.readAllTemperatures(), (Temperatures{{"SOC 1", 44}}));
    tree.write(zones + "thermal_zone1/temp", "27800\n"); // No sensor behind it.
    QVERIFY(bridge.readAllTemperatures().empty());
}

void TestThermalBridge::theHottestZoneOfAKindCounts()
{
    const MachineTree tree;
    for (const auto &[zone, type, temperature] :
         {std::tuple("thermal_zone0", "cpu0-thermal\n", "40000\n"),
          std::tuple("thermal_zone1", "cpu1-thermal\n", "45000\n"),
          std::tuple("cooling_device0", "cpu-thermal\n", "99000\n")}) {
        tree.write(std::string("sys/class/thermal/") + zone + "/type", type);
        tree.write(std::string("sys/class/thermal/") + zone + "/temp", temperature);
    }
    QCOMPARE(ThermalBridge(tree.root()).readAllTemperatures(), (Temperatures{{"PACC 1", 45}}));
}

void TestThermalBridge::aSleepingGPUIsNotTouched()
{
    const MachineTree tree("amd-desktop");
    tree.write(amdCard + "/power/runtime_status", "suspended\n");
    AccessWatch files(tree.root() + '/' + amdCard);
    ThermalBridge bridge(tree.root());
    QCOMPARE(bridge.readAllTemperatures(), (Temperatures{{"PACC 1", 56.25}, {"PACC 2", 55.75}}));
    QCOMPARE(files.touched(), QStringList{u"power/runtime_status"_s});
}

void TestThermalBridge::onlyTheNameOfOtherDevicesIsRead()
{
    const MachineTree tree("intel-hybrid-nvidia");
    AccessWatch files(tree.root() + '/' + monitors + "hwmon1"); // A disk's.
    ThermalBridge bridge(tree.root());
    QCOMPARE(bridge.readAllTemperatures().size(), std::size_t(5));
    QCOMPARE(files.touched(), QStringList{u"name"_s});
}

void TestThermalBridge::findsADriverThatComesLate()
{
    const MachineTree tree;
    ThermalBridge bridge(tree.root());
    QVERIFY(bridge.readAllTemperatures().empty());
    tree.write("sys/class/hwmon/hwmon0/name", "coretemp\n");
    tree.write("sys/class/hwmon/hwmon0/temp1_label", "Package id 0\n");
    tree.write("sys/class/hwmon/hwmon0/temp1_input", "50000\n");
    for (int tick = 0; tick < 61; ++tick)
        bridge.readAllTemperatures();
    QCOMPARE(bridge.readAllTemperatures(), (Temperatures{{"SOC 1", 50}}));
}

QTEST_GUILESS_MAIN(TestThermalBridge)
#include "tst_ThermalBridge.moc"
