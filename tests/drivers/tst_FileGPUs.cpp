#include "drivers/FileGPUs_linux.h"

#include "support/AccessWatch.h"
#include "support/MachineTree.h"

#include <QTest>

using namespace corvane;
using corvane::test::AccessWatch;
using corvane::test::MachineTree;
using namespace Qt::StringLiterals;

namespace {

const std::string amdSlot =
    "sys/devices/pci0000:00/0000:00:03.1/0000:09:00.0/0000:0a:00.0/0000:0b:00.0";

QString text(Coverage coverage)
{
    static const QStringList names = {u"absent"_s,    u"asleep"_s,    u"locked"_s, u"unpublished"_s,
                                      u"noLibrary"_s, u"newDriver"_s, u"known"_s};
    return names[int(coverage)];
}

/// "Name: load watts memory" of each.
QStringList texts(const FileGPUsReading &reading)
{
    QStringList texts;
    for (const GPUCoverage &gpu : reading.coverage) {
        texts.append(gpu.name + u": "_s + text(gpu.load) + u' ' + text(gpu.watts) + u' '
                     + text(gpu.memory));
    }
    return texts;
}

/// What the watch of the GPUs finds.
FileDevices devicesBelow(const std::string &root)
{
    FileDevices found = {.gpus = findGPUDevices(root), .npu = findNPUDevice(root)};
    std::erase_if(found.gpus, [](const GPUDevice &gpu) { return gpu.driver == GPUDriver::nvidia; });
    return found;
}

/// Reads all of a machine's devices.
class Files : public FileGPUs {
public:
    explicit Files(const MachineTree &tree) : FileGPUs(tree.root()), m_root(tree.root())
    {
        search();
    }

    void search() { setDevices(devicesBelow(m_root)); }

private:
    std::string m_root;
};

/// A discrete card in a free slot.
void addCard(const MachineTree &tree, int number, const std::string &driver)
{
    const std::string name = std::to_string(number);
    const std::string slot = "sys/devices/pci0000:00/0000:0" + name + ":00.0";
    tree.write(slot + "/mem_busy_percent", "0\n");
    tree.link(slot + "/driver", "sys/bus/pci/drivers/" + driver);
    tree.link("sys/class/drm/card" + name + "/device", slot);
}

} // namespace

/// All GPUs whose drivers publish files.
class TestFileGPUs : public QObject {
    Q_OBJECT

private slots:
    void tellWhatTheyPublish_data();
    void tellWhatTheyPublish();
    void areLeftAsleep();
    void keepTheirKnowledgeWhileTheySleep();
    void comeAndGo();
    void areSearchedForAgainWhereFilesCame_data();
    void areSearchedForAgainWhereFilesCame();
    void tellOthersWhatMayBeTouched();
    void haveTheNPUBesideThem();
};

void TestFileGPUs::tellWhatTheyPublish_data()
{
    QTest::addColumn<std::string>("machine");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("a card of AMD")
        << std::string("amd-desktop")
        << QStringList{u"AMD Radeon RX 6700/6700 XT/6750 XT / 6800M…: known known known"_s};
    QTest::newRow("an APU") << std::string("amd-apu-npu-laptop")
                            << QStringList{u"AMD Radeon 880M / 890M: known known known"_s};
    QTest::newRow("a card on xe") << std::string("intel-arc-desktop")
                                  << QStringList{u"Intel Arc B580: known known unpublished"_s};
    QTest::newRow("graphics of Intel beside a card of NVIDIA")
        << std::string("intel-npu-nvidia-laptop")
        << QStringList{u"Intel Arc Graphics: known unpublished unpublished"_s};
    QTest::newRow("none") << std::string("virtual-machine-chip") << QStringList();
}

void TestFileGPUs::tellWhatTheyPublish()
{
    QFETCH(std::string, machine);
    const MachineTree tree(machine);
    Files gpus(tree);
    gpus.read(100);
    QTEST(texts(gpus.read(101)), "expected");
}

void TestFileGPUs::areLeftAsleep()
{
    const MachineTree tree("amd-desktop");
    tree.write(amdSlot + "/power/runtime_status", "suspended\n");
    Files gpus(tree);
    AccessWatch files(tree.root() + '/' + amdSlot);
    const FileGPUsReading reading = gpus.read(100);
    QVERIFY(reading.gpus.empty());
    QCOMPARE(texts(reading),
             QStringList{u"AMD Radeon RX 6700/6700 XT/6750 XT / 6800M…: asleep asleep asleep"_s});
    QVERIFY(!reading.coverage.front().memoryTotal); // Nobody has seen it yet.
    QCOMPARE(files.touched(), QStringList{u"power/runtime_status"_s});
}

void TestFileGPUs::keepTheirKnowledgeWhileTheySleep()
{
    const MachineTree tree("amd-desktop");
    Files gpus(tree);
    QCOMPARE(gpus.read(100).gpus.size(), std::size_t(1));
    tree.write(amdSlot + "/power/runtime_status", "suspended\n");
    const FileGPUsReading asleep = gpus.read(101);
    QVERIFY(asleep.gpus.empty());
    QCOMPARE(asleep.coverage.front().memoryTotal, std::optional<std::uint64_t>(12'868'124'672));
    tree.write(amdSlot + "/power/runtime_status", "active\n");
    const FileGPUsReading awake = gpus.read(102);
    QCOMPARE(awake.gpus.front().busyFraction, std::optional(0.64));
    QCOMPARE(awake.coverage.front().load, Coverage::known);
}

void TestFileGPUs::comeAndGo()
{
    const MachineTree tree;
    Files gpus(tree);
    addCard(tree, 1, "amdgpu");
    QVERIFY(gpus.read(159).coverage.empty());
    gpus.search();
    QCOMPARE(texts(gpus.read(160)),
             QStringList{u"AMD GPU 0: unpublished unpublished unpublished"_s});
    addCard(tree, 2, "xe");
    tree.remove("sys/class/drm/card1");
    QCOMPARE(texts(gpus.read(219)).size(), 1);
    gpus.search();
    QCOMPARE(texts(gpus.read(220)),
             QStringList{u"Intel GPU 0: unpublished unpublished unpublished"_s});
    tree.remove("sys/class/drm");
    gpus.search();
    QVERIFY(gpus.read(280).coverage.empty());
}

void TestFileGPUs::areSearchedForAgainWhereFilesCame_data()
{
    QTest::addColumn<int>("gone");
    QTest::addColumn<int>("back");
    QTest::addColumn<int>("found");
    QTest::newRow("added in the first minutes") << 0 << 3 << 3;
    QTest::newRow("added later") << 0 << 6 << 10;
    QTest::newRow("missing at one search") << 10 << 11 << 11;
    QTest::newRow("missing for long") << 10 << 15 << 15;
}

/// From minute `gone` to `back` a file is not there; its value is read from minute `found` on.
void TestFileGPUs::areSearchedForAgainWhereFilesCame()
{
    QFETCH(const int, gone);
    QFETCH(const int, back);
    QFETCH(const int, found);
    const MachineTree tree("amd-desktop");
    FileGPUs gpus(tree.root());
    const FileDevices devices = devicesBelow(tree.root());
    for (int minute = 0; minute < 25; ++minute) {
        if (minute == gone)
            tree.remove(amdSlot + "/gpu_busy_percent");
        if (minute == back)
            tree.write(amdSlot + "/gpu_busy_percent", "64\n");
        gpus.setDevices(devices);
        const bool isRead = gpus.read(100 + 60 * minute).gpus.at(0).busyFraction.has_value();
        QCOMPARE(isRead, minute < gone || minute >= found);
    }
}

void TestFileGPUs::tellOthersWhatMayBeTouched()
{
    const MachineTree tree("amd-desktop");
    Files gpus(tree);
    QVERIFY(gpus.read(100).access->front().state == GPUAccess::State::open);
    tree.write(amdSlot + "/power/runtime_status", "suspended\n");
    const FileGPUsReading reading = gpus.read(101);
    QVERIFY(reading.access->front().state == GPUAccess::State::asleep);
    QCOMPARE(reading.access->front().address, std::string("0000:0b:00.0"));
}

void TestFileGPUs::haveTheNPUBesideThem()
{
    const MachineTree tree("amd-apu-npu-laptop");
    Files gpus(tree);
    QCOMPARE(gpus.read(100).npu.value().metrics.activeFraction, std::optional(0.17));
    tree.remove("sys/class/accel/accel0");
    gpus.search();
    QVERIFY(!gpus.read(160).npu);
    const MachineTree desktop("amd-desktop");
    QVERIFY(!Files(desktop).read(100).npu);
}

QTEST_GUILESS_MAIN(TestFileGPUs)
#include "tst_FileGPUs.moc"
