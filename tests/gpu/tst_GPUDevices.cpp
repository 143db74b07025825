#include "gpu/GPUDevices_linux.h"

#include "support/MachineTree.h"
#include "support/Machines.h"

#include <QTest>

#include <filesystem>

using namespace corvane;
using corvane::test::MachineTree;

using namespace Qt::StringLiterals;

namespace {

/// "driver address i|d", with "-" for a missing address.
QStringList textsOf(const std::vector<GPUDevice> &devices)
{
    static const QStringList drivers = {u"amdgpu"_s, u"i915"_s, u"xe"_s, u"nouveau"_s, u"nvidia"_s};
    QStringList texts;
    for (const GPUDevice &device : devices)
        texts << drivers[int(device.driver)] + u' '
                + (device.address.empty() ? u"-"_s : QString::fromStdString(device.address))
                + (device.integrated ? u" integrated"_s : u" discrete"_s);
    return texts;
}

const std::string slot = "sys/devices/pci0000:00/0000:03:00.0";

/// A display node of a device with this driver.
void addCard(const MachineTree &machine, const std::string &device, const std::string &driver)
{
    machine.write(device + "/power/runtime_status", "active\n");
    machine.link(device + "/driver", "sys/bus/pci/drivers/" + driver);
    machine.link("sys/class/drm/card0/device", device);
}

} // namespace

class TestGPUDevices : public QObject {
    Q_OBJECT

private slots:
    void findsThoseOfMachines_data();
    void findsThoseOfMachines();
    void distinguishesIntegratedFromDiscrete_data();
    void distinguishesIntegratedFromDiscrete();
    void findsNvidiaByItsProcFolder();
    void findsNvidiaInAContainer();
    void namesEachOnce();
};

void TestGPUDevices::findsThoseOfMachines_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<QStringList>("devices");
    QTest::newRow("integrated Intel, and NVIDIA without a display node")
        << u"intel-hybrid-nvidia"_s
        << QStringList{u"i915 0000:00:02.0 integrated"_s, u"nvidia 0000:01:00.0 discrete"_s};
    QTest::newRow("an APU") << u"amd-apu-laptop"_s
                            << QStringList{u"amdgpu 0000:c1:00.0 integrated"_s};
    QTest::newRow("a discrete card with connectors")
        << u"amd-desktop"_s << QStringList{u"amdgpu 0000:0b:00.0 discrete"_s};
    QTest::newRow("no display at all") << u"arm-board-chip"_s << QStringList{};
    QTest::newRow("a driver without values") << u"apple-silicon-linux"_s << QStringList{};
    QTest::newRow("a virtual machine") << u"virtual-machine-chip"_s << QStringList{};
}

void TestGPUDevices::findsThoseOfMachines()
{
    QFETCH(QString, machine);
    QTEST(textsOf(findGPUDevices(test::machine(machine.toStdString()))), "devices");
}

void TestGPUDevices::distinguishesIntegratedFromDiscrete_data()
{
    QTest::addColumn<QString>("driver");
    QTest::addColumn<QString>("device");
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("integrated");
    const QString own = QString::fromStdString(slot);
    const QString intel = u"sys/devices/pci0000:00/0000:00:02.0"_s;
    QTest::newRow("an APU has no load of its own memory") << u"amdgpu"_s << own << u""_s << true;
    QTest::newRow("a card has a load of its own memory")
        << u"amdgpu"_s << own << u"mem_busy_percent"_s << false;
    QTest::newRow("an older card has a file about its bus")
        << u"amdgpu"_s << own << u"pcie_bw"_s << false;
    QTest::newRow("Intel at its usual place") << u"xe"_s << intel << u""_s << true;
    QTest::newRow("Intel with sensors") << u"xe"_s << intel << u"hwmon/hwmon0/name"_s << false;
    QTest::newRow("Intel elsewhere") << u"i915"_s << own << u""_s << false;
    QTest::newRow("NVIDIA") << u"nvidia"_s << own << u""_s << false;
    QTest::newRow("the free driver of NVIDIA's") << u"nouveau"_s << own << u""_s << false;
}

void TestGPUDevices::distinguishesIntegratedFromDiscrete()
{
    QFETCH(QString, driver);
    QFETCH(QString, device);
    QFETCH(QString, file);
    const MachineTree machine;
    addCard(machine, device.toStdString(), driver.toStdString());
    if (!file.isEmpty())
        machine.write((device + u'/' + file).toStdString(), "1\n");
    const auto devices = findGPUDevices(machine.root());
    QCOMPARE(devices.size(), std::size_t(1));
    QTEST(devices[0].integrated, "integrated");
}

void TestGPUDevices::findsNvidiaByItsProcFolder()
{
    const MachineTree machine;
    machine.write("proc/driver/nvidia/gpus/0000:65:00.0/power", "");
    QCOMPARE(textsOf(findGPUDevices(machine.root())),
             QStringList{u"nvidia 0000:65:00.0 discrete"_s});
}

void TestGPUDevices::findsNvidiaInAContainer()
{
    const MachineTree machine;
    machine.write("dev/nvidiactl", "");
    machine.write("dev/nvidia-uvm", "");
    QCOMPARE(textsOf(findGPUDevices(machine.root())), QStringList{});
    machine.write("dev/nvidia0", "");
    machine.write("dev/nvidia1", "");
    QCOMPARE(textsOf(findGPUDevices(machine.root())), QStringList{u"nvidia - discrete"_s});
}

void TestGPUDevices::namesEachOnce()
{
    const MachineTree machine;
    addCard(machine, slot, "nvidia");
    machine.link("sys/bus/pci/drivers/nvidia/0000:03:00.0", slot);
    machine.write("proc/driver/nvidia/gpus/0000:03:00.0/power", "");
    machine.write("dev/nvidia0", "");
    QCOMPARE(textsOf(findGPUDevices(machine.root())),
             QStringList{u"nvidia 0000:03:00.0 discrete"_s});
}

QTEST_GUILESS_MAIN(TestGPUDevices)
#include "tst_GPUDevices.moc"
