#include "chip/ChipSource_linux.h"
#include "memory/MemoryFiles_linux.h"
#include "memory/MemorySampler.h"
#include "sampler/SystemSampler.h"
#include "support/FaultyCalls.h"
#include "support/MachineTree.h"
#include "support/Machines.h"
#include "support/SteppedClock.h"

#include <QCoreApplication>
#include <QTest>

#include <memory>
#include <set>
#include <string>

using namespace corvane;
using namespace corvane::test;

/// Which files the thread of the ticks opens itself. It waits for each of them, whereas all others
/// may hang.
class TestFilesOfATick : public QObject {
    Q_OBJECT

private slots:
    void theTickOpensOnlyWhatTheKernelAnswersAlone_data();
    void theTickOpensOnlyWhatTheKernelAnswersAlone();
};

void TestFilesOfATick::theTickOpensOnlyWhatTheKernelAnswersAlone_data()
{
    QTest::addColumn<std::string>("name");
    QTest::addColumn<bool>("hasDrivers");
    for (const char *name :
         {"amd-apu-laptop", "amd-apu-npu-laptop", "amd-desktop", "apple-silicon-linux",
          "arm-board-chip", "intel-arc-desktop", "intel-hybrid-nvidia", "intel-npu-nvidia-laptop",
          "nvidia-desktop", "nvidia-gb10", "nvidia-workstation-4"})
        QTest::newRow(name) << std::string(name) << true;
    for (const char *name : {"server-offline-core", "virtual-machine-chip"})
        QTest::newRow(name) << std::string(name) << false;
}

void TestFilesOfATick::theTickOpensOnlyWhatTheKernelAnswersAlone()
{
    QFETCH(const std::string, name);
    QFETCH(const bool, hasDrivers);
    const MachineTree tree(name);
    AppSettings settings;
    FaultyCalls::takeOpenedHere();
    const auto memory = std::make_shared<MemoryFiles>(tree.root());
    SystemSampler sampler(settings,
                          {.memory = [memory] { return MemorySampler::snapshot(memory->read()); },
                           .chip = openChipSourceBelow(tree.root()),
                           .survey = {},
                           .now = secondsSinceBoot},
                          keepsNoHistory);
    // Drivers and devices are looked for every minute.
    for (int tick = 0; tick < 130; ++tick) {
        SteppedClock::pass(1);
        sampler.tick();
    }
    QVERIFY(sampler.current().chip);
    std::set<std::string> files;
    for (const std::string &path : FaultyCalls::takeOpenedHere()) {
        if (path.starts_with(tree.root()))
            files.insert(path.substr(tree.root().size()));
    }
    for (const char *file : {"/proc/stat", "/proc/meminfo", "/proc/pressure/memory"})
        QVERIFY2(files.erase(file) == 1, file);
    // Without a driver nothing is read of the CPUs after the start.
    if (!hasDrivers)
        std::erase_if(files, [](const std::string &file) {
            return file == "/proc/cpuinfo" || file.starts_with("/sys/devices/");
        });
    QVERIFY2(files.empty(), files.empty() ? "" : files.begin()->c_str());
}

QTEST_GUILESS_MAIN(TestFilesOfATick)
#include "tst_FilesOfATick.moc"
