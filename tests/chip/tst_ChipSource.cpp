#include "chip/ChipSource.h"

#include "support/MachineTree.h"
#include "support/Machines.h"

#include <QTest>

using namespace corvane;
using corvane::test::MachineTree;

using namespace Qt::StringLiterals;

namespace {

/// The times of that many CPUs, all alike.
std::string cpuTimes(int cpus, int busy, int idle)
{
    std::string text;
    for (int cpu = 0; cpu < cpus; ++cpu)
        text += "cpu" + std::to_string(cpu) + ' ' + std::to_string(busy) + " 0 0 "
            + std::to_string(idle) + " 0 0 0 0 0 0\n";
    return text;
}

} // namespace

/// Everything below the chip source put together: each source by itself has a test of its own.
class TestChipSource : public QObject {
    Q_OBJECT

private slots:
    void isEmptyWhereNothingTellsOfTheChip_data();
    void isEmptyWhereNothingTellsOfTheChip();
    void readsMachines_data();
    void readsMachines();
    void showsNoLoadWhileTheTimesCannotBeRead();
    void measuresByItsClock();
    void copiesGoOnTogether();
};

void TestChipSource::isEmptyWhereNothingTellsOfTheChip_data()
{
    QTest::addColumn<QString>("machine");
    QTest::newRow("an empty folder") << QString();
    QTest::newRow("no such folder") << u"no-such-machine"_s;
    QTest::newRow("memory and times alone") << u"kernel-without-psi"_s;
}

void TestChipSource::isEmptyWhereNothingTellsOfTheChip()
{
    QFETCH(QString, machine);
    const MachineTree empty;
    const std::string root =
        machine.isEmpty() ? empty.root() : test::machine(machine.toStdString());
    QVERIFY(!openChipSource(root));
}

void TestChipSource::readsMachines_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<int>("cpus");
    QTest::addColumn<std::optional<double>>("gpuActiveFraction");
    QTest::addColumn<QString>("gpuState");
    QTest::addColumn<std::optional<double>>("cpuTempC");
    QTest::addColumn<std::optional<double>>("gpuTempC");
    QTest::addColumn<std::optional<double>>("packageTempC");
    const std::optional<double> none;
    const auto known = [](double value) { return std::optional(value); };
    QTest::newRow("an APU") << u"amd-apu-laptop"_s << 12 << known(0.37) << u"1100 MHz"_s
                            << known(54.125) << known(52) << none;
    QTest::newRow("a desktop with a card")
        << u"amd-desktop"_s << 12 << known(0.64) << u"2600 MHz"_s << known(56) << known(67) << none;
    // Its integrated graphics tell the load by idle time, which stands still here.
    QTest::newRow("a laptop of Intel's, its NVIDIA asleep")
        << u"intel-hybrid-nvidia"_s << 12 << none << u""_s << known(53.5) << none << known(58);
    QTest::newRow("Apple's chip") << u"apple-silicon-linux"_s << 8 << known(0) << u""_s << none
                                  << none << none;
    QTest::newRow("a board") << u"arm-board-chip"_s << 8 << known(0) << u""_s << known(47.6145)
                             << known(45.307) << none;
    QTest::newRow("a virtual machine")
        << u"virtual-machine-chip"_s << 2 << known(0) << u""_s << none << none << none;
}

void TestChipSource::readsMachines()
{
    QFETCH(QString, machine);
    QFETCH(int, cpus);
    QFETCH(std::optional<double>, gpuActiveFraction);
    const MachineTree tree(machine.toStdString());
    tree.write("proc/stat", cpuTimes(cpus, 0, 0));
    const ChipSource chip = openChipSource(tree.root(), readFrequencyTables(tree.root()));
    QVERIFY(chip);

    tree.write("proc/stat", cpuTimes(cpus, 10, 30));
    const auto first = chip();
    QVERIFY(first);
    QCOMPARE(first->cpuActiveFraction, 0.25); // Since it was opened.
    QCOMPARE(first->cpuCoreUtilizations, std::vector<double>(std::size_t(cpus), 0.0));
    if (gpuActiveFraction) {
        QCOMPARE(first->gpuActiveFraction, *gpuActiveFraction);
        QTEST(first->gpuDominantState.value_or(QString()), "gpuState");
    }
    QTEST(first->cpuTempC, "cpuTempC");
    QTEST(first->gpuTempC, "gpuTempC");
    QTEST(first->packageTempC, "packageTempC");
    QVERIFY(!first->aneTempC);
    QCOMPARE(first->aneWatts, 0.0);

    tree.write("proc/stat", cpuTimes(cpus, 40, 40));
    const auto second = chip();
    QVERIFY(second);
    QCOMPARE(second->cpuActiveFraction, 0.75);
    QCOMPARE(second->cpuCoreUtilizations, std::vector<double>(std::size_t(cpus), 0.75));
}

void TestChipSource::showsNoLoadWhileTheTimesCannotBeRead()
{
    const MachineTree tree("virtual-machine-chip");
    tree.write("proc/stat", cpuTimes(2, 0, 0));
    const ChipSource chip = openChipSource(tree.root(), readFrequencyTables(tree.root()));
    tree.write("proc/stat", cpuTimes(2, 50, 50));
    QCOMPARE(chip()->cpuActiveFraction, 0.5);

    tree.write("proc/stat", "");
    const auto blind = chip();
    QVERIFY(blind);
    QCOMPARE(blind->cpuActiveFraction, 0.0);
    QVERIFY(blind->cpuCoreUtilizations.empty());

    tree.write("proc/stat", cpuTimes(2, 80, 80));
    QCOMPARE(chip()->cpuCoreUtilizations, (std::vector<double>{0.5, 0.5})); // Since the last good.
    tree.write("proc/stat", cpuTimes(2, 170, 90));
    QCOMPARE(chip()->cpuActiveFraction, 0.9);
}

void TestChipSource::measuresByItsClock()
{
    const MachineTree tree("amd-desktop");
    const std::string energy = "sys/devices/virtual/powercap/intel-rapl/intel-rapl:0/energy_uj";
    tree.write(energy, "1000000\n");
    double now = 50;
    const ChipSource chip =
        openChipSource(tree.root(), readFrequencyTables(tree.root()), [&now] { return now; });
    tree.write(energy, "61000000\n");
    now = 52;
    QCOMPARE(chip()->cpuWatts, 30.0); // 60 J in two seconds.
}

void TestChipSource::copiesGoOnTogether()
{
    const MachineTree tree("virtual-machine-chip");
    tree.write("proc/stat", cpuTimes(2, 0, 0));
    ChipSource copy;
    {
        const ChipSource chip = openChipSource(tree.root(), readFrequencyTables(tree.root()));
        copy = chip;
        tree.write("proc/stat", cpuTimes(2, 50, 50));
        QCOMPARE(chip()->cpuActiveFraction, 0.5);
    }
    tree.write("proc/stat", cpuTimes(2, 50, 150));
    QCOMPARE(copy()->cpuActiveFraction, 0.0);
}

QTEST_GUILESS_MAIN(TestChipSource)
#include "tst_ChipSource.moc"
