#include "chip/ChipName.h"
#include "chip/ChipName_linux.h"
#include "chip/ChipSource_linux.h"
#include "cpu/CPUClusterFiles_linux.h"
#include "cpu/ProcStatFile_linux.h"
#include "gpu/GPUDevices_linux.h"
#include "memory/MemoryFiles_linux.h"
#include "support/MachineTree.h"
#include "support/Machines.h"

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

/// The results of all readers on the machine below a root, as comparable text.
QStringList readings(const std::string &root)
{
    QStringList lines;
    const auto add = [&lines](const char *name, const auto &...values) {
        lines += QString::fromLatin1(name);
        ((lines.last() += u' ' + QString::number(values, 'g', 17)), ...);
    };
    lines += QString::fromStdString(readChipNameBelow(root).value_or("no name"));
    const MemoryCounters memory = MemoryFiles(root).read();
    if (const auto &pages = memory.pages)
        add("pages", double(pages->free), double(pages->active), double(pages->inactive),
            double(pages->wired), double(pages->compressor), double(pages->purgeable),
            double(pages->external));
    add("pressure", double(memory.pressureLevel.value_or(0)));
    if (const auto ticks = ProcStatFile(root).read()) {
        for (const CoreTicks &core : *ticks)
            add("core", double(core.user), double(core.system), double(core.idle),
                double(core.nice));
    }
    for (const CPUCluster &cluster : readCPUClusters(root)) {
        add("cluster", double(cluster.cpus.size()), double(cluster.policies.size()));
        for (const std::uint64_t kHz : cluster.kHz)
            add("frequency", double(kHz));
    }
    for (const GPUDevice &device : findGPUDevices(root))
        lines += QString::fromStdString(device.address)
            + (device.integrated ? u" integrated"_s : u" discrete"_s);

    double now = 0;
    const ChipSource chip = openChipSourceBelow(root, [&now] { return now; });
    now = 1;
    if (const auto reading = chip ? chip() : std::nullopt) {
        lines += reading->gpuDominantState.value_or(u"no GPU"_s);
        // Watts that are integrated over the real time differ from one reading to the next.
        add("chip", double(reading->cpuWatts > 0), double(reading->gpuWatts > 0),
            reading->cpuActiveMHz, reading->gpuActiveFraction);
        add("heat", reading->cpuTempC.value_or(-1), reading->gpuTempC.value_or(-1),
            reading->packageTempC.value_or(-1));
    }
    return lines;
}

/// Names and contents of all files below the folder.
QByteArray everythingIn(const QString &folder)
{
    QByteArray everything;
    QDirIterator files(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        QFile file(files.next());
        everything += QDir(folder).relativeFilePath(file.fileName()).toUtf8() + '\n';
        if (file.open(QFile::ReadOnly))
            everything += file.readAll();
    }
    return everything;
}

} // namespace

/// The script that copies a machine's kernel files, on machines whose files are known.
class TestMachineCapture : public QObject {
    Q_OBJECT

private slots:
    void init() { m_folder.emplace(); }
    void readsAsTheMachineItself_data();
    void readsAsTheMachineItself();
    void takesThisMachine();
    void takesNothingPersonal();
    void leavesASleepingGPUAsleep();
    void overwritesNothing();

private:
    QString copy() const { return m_folder->filePath(u"copy"_s); }
    bool capture(const std::string &root) const;

    std::optional<QTemporaryDir> m_folder;
};

bool TestMachineCapture::capture(const std::string &root) const
{
    QProcess script;
    script.setStandardOutputFile(QProcess::nullDevice());
    script.start(QString::fromStdString(test::machine("capture")),
                 {copy(), QString::fromStdString(root)});
    return script.waitForFinished(-1) && script.exitStatus() == QProcess::NormalExit
        && script.exitCode() == 0;
}

void TestMachineCapture::readsAsTheMachineItself_data()
{
    QTest::addColumn<QString>("name");
    const QDir machines(QString::fromStdString(test::machine({})));
    for (const QString &name : machines.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        QTest::addRow("%s", qPrintable(name)) << name;
}

void TestMachineCapture::readsAsTheMachineItself()
{
    QFETCH(QString, name);
    const std::string root = test::machine(name.toStdString());
    QVERIFY(capture(root));
    QVERIFY(QFile::exists(copy() + "/ORIGIN"_L1));
    const QStringList expected = readings(root);
    QVERIFY(expected.size() > 1);
    QCOMPARE(readings(copy().toStdString()), expected);
}

void TestMachineCapture::takesThisMachine()
{
    QVERIFY(capture("/"));
    const std::string root = copy().toStdString();
    QCOMPARE(MemoryFiles(root).read().totalBytes, readMemoryCounters().totalBytes);
    QVERIFY(MemoryFiles(root).read().pages);
    QCOMPARE(ProcStatFile(root).read()->size(), ProcStatFile().read()->size());
    QCOMPARE(readChipNameBelow(root), readChipName());
    QCOMPARE(readCPUClusters(root).front().kHz, readCPUClusters().front().kHz);
    QCOMPARE(findGPUDevices(root).size(), findGPUDevices().size());
}

void TestMachineCapture::takesNothingPersonal()
{
    const test::MachineTree tree("arm-board-chip");
    tree.write("proc/cpuinfo",
               "processor\t: 0\nmodel name\t: Board\n\nSerial\t\t: personal\nModel\t: personal\n");
    tree.write("proc/stat", "cpu  1 2 3 4\ncpu0 1 2 3 4\nbtime 1234567890\n");
    for (const char *path :
         {"proc/1/cmdline", "proc/1/environ", "proc/sys/kernel/hostname", "proc/cmdline",
          "proc/device-tree/serial-number", "etc/hostname", "etc/machine-id", "etc/passwd",
          "sys/class/dmi/id/product_serial", "sys/class/net/eth0/address"})
        tree.write(path, "personal\n");
    QVERIFY(capture(tree.root()));
    const QByteArray everything = everythingIn(copy());
    QVERIFY(everything.contains("model name\t: Board\n"));
    QVERIFY(!everything.contains("personal"));
    QVERIFY(!everything.contains("1234567890"));
}

void TestMachineCapture::leavesASleepingGPUAsleep()
{
    const test::MachineTree tree("amd-apu-laptop");
    const std::string gpu = "sys/devices/pci0000:00/0000:00:08.1/0000:c1:00.0/";
    tree.write(gpu + "power/runtime_status", "suspended\n");
    QVERIFY(capture(tree.root()));
    const QString copied = copy() + u'/' + QString::fromStdString(gpu);
    QVERIFY(QFile::exists(copied + "power/runtime_status"_L1));
    QVERIFY(!QFile::exists(copied + "gpu_busy_percent"_L1));
    QVERIFY(!QFile::exists(copied + "hwmon/hwmon5/temp1_input"_L1));
}

void TestMachineCapture::overwritesNothing()
{
    QVERIFY(QDir().mkpath(copy()));
    QVERIFY(!capture(test::machine("virtual-machine")));
    QVERIFY(QDir(copy()).isEmpty());
}

QTEST_GUILESS_MAIN(TestMachineCapture)
#include "tst_MachineCapture.moc"
