#include "chip/FrequencyTables.h"
#include "cpu/CPUFrequencyFiles.h"
#include "support/MachineTree.h"
#include "support/Machines.h"

#include <QTest>

using namespace corvane;
using corvane::test::MachineTree;

using namespace Qt::StringLiterals;

using List = std::vector<double>;
using CPUs = std::vector<int>;

Q_DECLARE_METATYPE(List)

/// The clusters, tables and frequency files of whole machines.
class TestCPUClusterStates : public QObject {
    Q_OBJECT

private slots:
    void readsFrequencyTables_data();
    void readsFrequencyTables();
    void theCPUsOfClusters_data();
    void theCPUsOfClusters();
    void asksTheBusiestCPUAlone();
    void takesTheAverageBeforeThePresent();
    void takesTimesInStates();
};

void TestCPUClusterStates::readsFrequencyTables_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<List>("performance");
    QTest::addColumn<List>("efficiency");
    const auto steps = [](double first, double last) {
        List list;
        for (double megahertz = first; megahertz <= last; megahertz += 100)
            list.push_back(megahertz);
        return list;
    };
    List apu = steps(400, 4900);
    apu.push_back(4935);
    QTest::newRow("a hybrid without tables")
        << u"intel-hybrid-nvidia"_s << steps(400, 4400) << steps(400, 3300);
    QTest::newRow("a range that ends between steps") << u"amd-apu-laptop"_s << apu << List{};
    QTest::newRow("a table of three states")
        << u"amd-desktop"_s << List{2200, 2800, 3600} << List{};
    QTest::newRow("a board: the pairs of the fastest cores have tables of their own")
        << u"arm-board-chip"_s << List{408, 816, 1200, 1608, 2016, 2400}
        << List{408, 600, 816, 1008, 1200, 1416, 1608, 1800, 2016, 2256};
    QTest::newRow("Apple's chip") << u"apple-silicon-linux"_s
                                  << List{600,  828,  1056, 1284, 1500, 1728, 1956, 2184,
                                          2388, 2592, 2772, 2988, 3096, 3144, 3204}
                                  << List{600, 972, 1332, 1704, 2064};
    QTest::newRow("a virtual machine has one frequency")
        << u"virtual-machine-chip"_s << List{2596.142} << List{};
    QTest::newRow("nothing at all") << u"no-such-machine"_s << List{} << List{};
}

void TestCPUClusterStates::readsFrequencyTables()
{
    QFETCH(QString, machine);
    const FrequencyTables tables = readFrequencyTables(test::machine(machine.toStdString()));
    QTEST(tables.performance, "performance");
    QTEST(tables.efficiency, "efficiency");
    QVERIFY(IORegistryReader::readPmgrFrequencies("voltage-states5-sram").empty());
}

void TestCPUClusterStates::theCPUsOfClusters_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<QString>("clusters");
    QTest::newRow("hybrid") << u"intel-hybrid-nvidia"_s << u"PCPU 0-3 of 4, ECPU 4-11 of 8"_s;
    QTest::newRow("uniform") << u"amd-desktop"_s << u"PCPU 0-11 of 12"_s;
    QTest::newRow("three capacities") << u"arm-board-chip"_s << u"PCPU 4-5 of 1, ECPU 0-7 of 2"_s;
    QTest::newRow("two capacities")
        << u"apple-silicon-linux"_s << u"PCPU 4-7 of 1, ECPU 0-3 of 1"_s;
    QTest::newRow("virtual") << u"virtual-machine-chip"_s << u"PCPU 0-1 of 0"_s;
}

void TestCPUClusterStates::theCPUsOfClusters()
{
    QFETCH(QString, machine);
    QStringList texts;
    for (const CPUClusterStates &states :
         readCPUClusterStates(test::machine(machine.toStdString()))) {
        texts << u"%1 %2-%3 of %4"_s.arg(QString::fromStdString(states.cluster.channel))
                     .arg(states.cluster.cpus.front())
                     .arg(states.cluster.cpus.back())
                     .arg(states.policies.size());
    }
    QTEST(texts.join(u", "_s), "clusters");
}

void TestCPUClusterStates::asksTheBusiestCPUAlone()
{
    const auto clusters = readCPUClusterStates(test::machine("intel-hybrid-nvidia"));
    CPUFrequencyFiles files(clusters.at(1));
    QCOMPARE(files.read(7).presentKHz, std::optional<std::uint64_t>(1'707'000));
    QCOMPARE(files.read(11).presentKHz, std::optional<std::uint64_t>(1'711'000));
    QVERIFY(!files.read(0).presentKHz); // Of the other cluster.
    QVERIFY(!files.read({}).presentKHz);
}

void TestCPUClusterStates::takesTheAverageBeforeThePresent()
{
    const MachineTree tree("amd-apu-laptop");
    const std::string policy = "sys/devices/system/cpu/cpufreq/policy3/";
    tree.write(policy + "cpuinfo_avg_freq", "2900000\n");
    const auto clusters = readCPUClusterStates(tree.root());
    CPUFrequencyFiles files(clusters.at(0));
    QCOMPARE(files.read(3).presentKHz, std::optional<std::uint64_t>(2'900'000));
    tree.write(policy + "cpuinfo_avg_freq", ""); // As of a CPU that was just idle.
    QCOMPARE(files.read(3).presentKHz, std::optional<std::uint64_t>(3'200'000));
}

void TestCPUClusterStates::takesTimesInStates()
{
    const auto clusters = readCPUClusterStates(test::machine("arm-board-chip"));
    CPUFrequencyFiles files(clusters.at(1));
    const CPUClusterReading reading = files.read(0);
    QCOMPARE(reading.policyTimes.size(), std::size_t(2));
    QCOMPARE(reading.policyTimes[0].size(), std::size_t(8));
    QCOMPARE(reading.policyTimes[1].size(), std::size_t(6));
    QVERIFY(!reading.presentKHz); // The times tell more.
}

QTEST_GUILESS_MAIN(TestCPUClusterStates)
#include "tst_CPUClusterStates.moc"
