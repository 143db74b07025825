#include "thermal/TemperatureFiles_linux.h"

#include "support/AccessWatch.h"
#include "support/MachineTree.h"
#include "support/Machines.h"

#include <QTest>

#include <filesystem>

using namespace corvane;
using corvane::test::AccessWatch;
using corvane::test::MachineTree;

using namespace Qt::StringLiterals;

namespace {

/// The sensors of a machine whose GPUs have display nodes.
class Sensors {
public:
    explicit Sensors(const std::string &root) : m_files(root) { }

    /// "cpu 54.125, gpu 45", in the order of the sensors.
    QString text()
    {
        static const QStringList parts = {u"cpu"_s, u"gpu"_s, u"ane"_s, u"package"_s};
        QStringList texts;
        for (const PartTemperature &sensor : m_files.read(hasDisplayNode))
            texts << parts[int(sensor.part)] + u' ' + QString::number(sensor.celsius, 'g', 8);
        return texts.join(u", "_s);
    }

private:
    static bool hasDisplayNode(const std::string &device)
    {
        return std::filesystem::exists(device + "/drm");
    }

    TemperatureFiles m_files;
};

const std::string monitors = "sys/devices/virtual/hwmon/";
const std::string zones = "sys/devices/virtual/thermal/";
const std::string amdCard =
    "sys/devices/pci0000:00/0000:00:03.1/0000:09:00.0/0000:0a:00.0/0000:0b:00.0";

} // namespace

class TestTemperatureFiles : public QObject {
    Q_OBJECT

private slots:
    void readsMachines_data();
    void readsMachines();
    void followsTheSensors();
    void aSensorThatFailsIsLeftOut();
    void fallsBackToTheBestZone();
    void fallsBackToAZoneBesideAGPUSensor();
    void theHottestZoneOfAKindCounts();
    void aGPUIsNotTouched();
    void onlyTheNameOfOtherDevicesIsRead();
    void findsADriverThatComesLate();
};

void TestTemperatureFiles::readsMachines_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<QString>("temperatures");
    QTest::newRow("a laptop of Intel's")
        << u"intel-hybrid-nvidia"_s << u"package 58, cpu 55, cpu 57, cpu 51, cpu 51"_s;
    QTest::newRow("an APU, whose GPU is left to the watch")
        << u"amd-apu-laptop"_s << u"cpu 54.125"_s;
    QTest::newRow("a desktop with a card") << u"amd-desktop"_s << u"cpu 56.25, cpu 55.75"_s;
    QTest::newRow("a board") << u"arm-board-chip"_s
                             << u"cpu 47.153, cpu 48.076, cpu 48.076, cpu 47.153, gpu 45.307"_s;
    QTest::newRow("a machine whose sensors belong to no part") << u"apple-silicon-linux"_s << u""_s;
    QTest::newRow("a virtual machine") << u"virtual-machine-chip"_s << u""_s;
}

void TestTemperatureFiles::readsMachines()
{
    QFETCH(QString, machine);
    QTEST(Sensors(test::machine(machine.toStdString())).text(), "temperatures");
}

void TestTemperatureFiles::followsTheSensors()
{
    const MachineTree tree("amd-apu-laptop");
    Sensors sensors(tree.root());
    QCOMPARE(sensors.text(), u"cpu 54.125"_s);
    tree.write(monitors + "hwmon3/temp1_input", "91500\n");
    QCOMPARE(sensors.text(), u"cpu 91.5"_s);
}

void TestTemperatureFiles::aSensorThatFailsIsLeftOut()
{
    const MachineTree tree("intel-hybrid-nvidia");
    Sensors sensors(tree.root());
    tree.write(monitors + "hwmon2/temp2_input", "");
    tree.write(monitors + "hwmon2/temp10_input", "-128000\n");
    QCOMPARE(sensors.text(), u"package 58, cpu 51, cpu 51"_s);
}

void TestTemperatureFiles::fallsBackToTheBestZone()
{
    const MachineTree tree("intel-hybrid-nvidia");
    tree.remove("sys/class/hwmon/hwmon2");
    tree.write(zones + "thermal_zone1/temp", "44000\n");
    Sensors sensors(tree.root());
    QCOMPARE(sensors.text(), u"package 58"_s);
    tree.write(zones + "thermal_zone2/temp", "");
    QCOMPARE(sensors.text(), u"package 44"_s);
    tree.write(zones + "thermal_zone1/temp", "27800\n"); // No sensor behind it.
    QCOMPARE(sensors.text(), u""_s);
}

void TestTemperatureFiles::fallsBackToAZoneBesideAGPUSensor()
{
    const MachineTree tree("arm-board-chip");
    tree.write("sys/class/thermal/thermal_zone9/type", "cpu-thermal\n");
    tree.write("sys/class/thermal/thermal_zone9/temp", "40000\n");
    for (const char *monitor : {"hwmon0", "hwmon1", "hwmon2", "hwmon3"}) // Those of the cores.
        tree.remove(std::string("sys/class/hwmon/") + monitor);
    QCOMPARE(Sensors(tree.root()).text(), u"gpu 45.307, cpu 40"_s);
}

void TestTemperatureFiles::theHottestZoneOfAKindCounts()
{
    const MachineTree tree;
    for (const auto &[zone, type, temperature] :
         {std::tuple("thermal_zone0", "cpu0-thermal\n", "40000\n"),
          std::tuple("thermal_zone1", "cpu1-thermal\n", "45000\n"),
          std::tuple("cooling_device0", "cpu-thermal\n", "99000\n")}) {
        tree.write(std::string("sys/class/thermal/") + zone + "/type", type);
        tree.write(std::string("sys/class/thermal/") + zone + "/temp", temperature);
    }
    QCOMPARE(Sensors(tree.root()).text(), u"cpu 45"_s);
}

void TestTemperatureFiles::aGPUIsNotTouched()
{
    const MachineTree tree("amd-desktop");
    AccessWatch files(tree.root() + '/' + amdCard);
    QCOMPARE(Sensors(tree.root()).text(), u"cpu 56.25, cpu 55.75"_s);
    QCOMPARE(files.touched(), QStringList{});
}

void TestTemperatureFiles::onlyTheNameOfOtherDevicesIsRead()
{
    const MachineTree tree("intel-hybrid-nvidia");
    AccessWatch files(tree.root() + '/' + monitors + "hwmon1"); // A disk's.
    QVERIFY(!Sensors(tree.root()).text().isEmpty());
    QCOMPARE(files.touched(), QStringList{u"name"_s});
}

void TestTemperatureFiles::findsADriverThatComesLate()
{
    const MachineTree tree;
    Sensors sensors(tree.root());
    QCOMPARE(sensors.text(), u""_s);
    tree.write("sys/class/hwmon/hwmon0/name", "coretemp\n");
    tree.write("sys/class/hwmon/hwmon0/temp1_label", "Package id 0\n");
    tree.write("sys/class/hwmon/hwmon0/temp1_input", "50000\n");
    for (int tick = 0; tick < 61; ++tick)
        sensors.text();
    QCOMPARE(sensors.text(), u"package 50"_s);
}

QTEST_GUILESS_MAIN(TestTemperatureFiles)
#include "tst_TemperatureFiles.moc"
