#include "chip/ChipSource_linux.h"

#include "support/MachineTree.h"
#include "support/ProgramRun.h"
#include "support/SystemCalls.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

const QString watchOption = u"--watch"_s;
constexpr int ticks = 70; ///< More than a minute: devices are searched for once more.

/// What the traced process does: reads the machine below `root`, and tells what it has learned.
int watchMachine(const std::string &root)
{
    double now = 500;
    const ChipSource chip = openChipSourceBelow(
        root, [&now] { return now; }, STAND_IN_NVML);
    for (int tick = 1; tick < ticks; ++tick) {
        now += 1;
        chip();
    }
    const ChipReading reading = chip().value();
    const bool sleeps = std::ranges::any_of(reading.coverage->gpus, [](const GPUCoverage &gpu) {
        return gpu.load == Coverage::asleep;
    });
    const bool tellsNPU = reading.coverage->npuLoad != Coverage::absent;
    return (sleeps ? 0 : 1) + (tellsNPU ? 0 : 2);
}

/// What a call opens, or reads of.
QStringList pathsOf(const SystemCall &call)
{
    if (!call.name.contains("read"))
        return call.paths();
    const qsizetype start = call.arguments.indexOf('<') + 1;
    const qsizetype end = call.arguments.indexOf('>', start);
    return {QString::fromUtf8(call.arguments.mid(start, end - start))};
}

} // namespace

/// The system calls of a program that reads a machine whose graphics card sleeps.
class TestSleepingGPU : public QObject {
    Q_OBJECT

private slots:
    void isNotTouched_data();
    void isNotTouched();
};

void TestSleepingGPU::isNotTouched_data()
{
    QTest::addColumn<std::string>("machine");
    QTest::addColumn<std::string>("card");
    QTest::addColumn<int>("status"); ///< 2: the machine has no NPU.
    QTest::newRow("a card of NVIDIA beside an NPU")
        << std::string("intel-npu-nvidia-laptop")
        << std::string("sys/devices/pci0000:00/0000:00:06.0/0000:01:00.0") << 0;
    QTest::newRow("a card of AMD")
        << std::string("amd-desktop")
        << std::string("sys/devices/pci0000:00/0000:00:03.1/0000:09:00.0/0000:0a:00.0/0000:0b:00.0")
        << 2;
    QTest::newRow("a card of Intel")
        << std::string("intel-arc-desktop")
        << std::string("sys/devices/pci0000:00/0000:00:01.0/0000:01:00.0/0000:02:01.0/0000:03:00.0")
        << 2;
}

/// Folders may be listed and links followed: that wakes nothing. No file of the card is opened
/// but the one that says whether it sleeps, and neither the vendor's library nor a device.
void TestSleepingGPU::isNotTouched()
{
    if (const QString obstacle = obstacleToTracing(); !obstacle.isEmpty())
        QSKIP(qPrintable(obstacle));
    QFETCH(std::string, machine);
    QFETCH(std::string, card);
    QFETCH(int, status);
    const MachineTree tree(machine);
    tree.write(card + "/power/runtime_status", "suspended\n");
    const QTemporaryDir folder;
    const QString trace = folder.filePath(u"trace"_s);
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(u"ASAN_OPTIONS"_s, u"detect_leaks=0"_s); // Not found under strace.
    const ProgramRun run(environment, u"strace"_s,
                         {u"-f"_s, u"-y"_s, u"-e"_s, u"trace=open,openat,read,pread64"_s, u"-o"_s,
                          trace, QCoreApplication::applicationFilePath(), watchOption,
                          QString::fromStdString(tree.root())});
    QCOMPARE(run.exitStatus(), status);

    QFile file(trace);
    QVERIFY(file.open(QFile::ReadOnly));
    const QString slot = QString::fromStdString(tree.root() + '/' + card + '/');
    int looks = 0;
    for (const SystemCall &call : systemCalls(file.readAll())) {
        const bool isList = call.arguments.contains("O_DIRECTORY");
        for (const QString &path : pathsOf(call)) {
            QVERIFY2(!path.startsWith(u"/dev/"_s) || path == u"/dev/null"_s
                         || path == u"/dev/urandom"_s,
                     qPrintable(path));
            QVERIFY2(!path.endsWith(QStringLiteral(STAND_IN_NVML)), qPrintable(path));
            if (!path.startsWith(slot) || isList)
                continue;
            const QString name = path.sliced(slot.size());
            looks += name == "power/runtime_status"_L1 ? 1 : 0;
            // Its numbers on the bus are the kernel's own copy.
            QVERIFY2(name == "power/runtime_status"_L1 || name == "vendor"_L1 || name == "device"_L1
                         || name == "class"_L1,
                     qPrintable(name));
        }
    }
    QVERIFY2(looks >= ticks, qPrintable(QString::number(looks))); // It was watched.
}

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3 && arguments[1] == watchOption)
        return watchMachine(arguments[2].toStdString());
    TestSleepingGPU test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_SleepingGPU.moc"
