#include "cpu/CPUFrequencyFiles_linux.h"

#include "cpu/CPUClusterFiles_linux.h"
#include "support/MachineTree.h"
#include "support/Machines.h"

#include <QTest>

using namespace corvane;
using corvane::test::MachineTree;

class TestCPUFrequencyFiles : public QObject {
    Q_OBJECT

private slots:
    void readsTheBusiestCPUAlone();
    void takesTheAverageBeforeThePresent();
    void takesTimesInStates();
};

void TestCPUFrequencyFiles::readsTheBusiestCPUAlone()
{
    const auto clusters = readCPUClusters(test::machine("intel-hybrid-nvidia"));
    CPUFrequencyFiles files(clusters.at(1));
    QCOMPARE(files.read(7).presentKHz, std::optional<std::uint64_t>(1'707'000));
    QCOMPARE(files.read(11).presentKHz, std::optional<std::uint64_t>(1'711'000));
    QVERIFY(!files.read(0).presentKHz); // Of the other cluster.
    QVERIFY(!files.read({}).presentKHz);
}

void TestCPUFrequencyFiles::takesTheAverageBeforeThePresent()
{
    const MachineTree tree("amd-apu-laptop");
    const std::string policy = "sys/devices/system/cpu/cpufreq/policy3/";
    tree.write(policy + "cpuinfo_avg_freq", "2900000\n");
    const auto clusters = readCPUClusters(tree.root());
    CPUFrequencyFiles files(clusters.at(0));
    QCOMPARE(files.read(3).presentKHz, std::optional<std::uint64_t>(2'900'000));
    tree.write(policy + "cpuinfo_avg_freq", ""); // As of a CPU that was just idle.
    QCOMPARE(files.read(3).presentKHz, std::optional<std::uint64_t>(3'200'000));
}

void TestCPUFrequencyFiles::takesTimesInStates()
{
    const auto clusters = readCPUClusters(test::machine("arm-board-chip"));
    CPUFrequencyFiles files(clusters.at(1));
    const CPUClusterReading reading = files.read(0);
    QCOMPARE(reading.policyTimes.size(), std::size_t(2));
    QCOMPARE(reading.policyTimes[0].size(), std::size_t(8));
    QCOMPARE(reading.policyTimes[1].size(), std::size_t(6));
    QVERIFY(!reading.presentKHz); // The times are better.
}

QTEST_GUILESS_MAIN(TestCPUFrequencyFiles)
#include "tst_CPUFrequencyFiles.moc"
