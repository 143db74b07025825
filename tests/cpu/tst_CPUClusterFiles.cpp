#include "cpu/CPUClusterFiles_linux.h"

#include "support/Machines.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

using List = std::vector<double>;

Q_DECLARE_METATYPE(List)

class TestCPUClusterFiles : public QObject {
    Q_OBJECT

private slots:
    void readsFrequencyTables_data();
    void readsFrequencyTables();
    void listsTheCPUsOfClusters_data();
    void listsTheCPUsOfClusters();
};

void TestCPUClusterFiles::readsFrequencyTables_data()
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

void TestCPUClusterFiles::readsFrequencyTables()
{
    QFETCH(QString, machine);
    QFETCH(List, performance);
    QFETCH(List, efficiency);
    std::vector<List> expected = {performance, efficiency};
    std::erase(expected, List());
    std::vector<List> tables;
    for (const CPUCluster &cluster : readCPUClusters(test::machine(machine.toStdString()))) {
        List &table = tables.emplace_back();
        for (const std::uint64_t kHz : cluster.kHz)
            table.push_back(double(kHz) / 1000);
    }
    QCOMPARE(tables, expected);
}

void TestCPUClusterFiles::listsTheCPUsOfClusters_data()
{
    QTest::addColumn<QString>("machine");
    QTest::addColumn<QString>("clusters");
    QTest::newRow("hybrid") << u"intel-hybrid-nvidia"_s << u"0-3 of 4, 4-11 of 8"_s;
    QTest::newRow("uniform") << u"amd-desktop"_s << u"0-11 of 12"_s;
    QTest::newRow("three capacities") << u"arm-board-chip"_s << u"4-5 of 1, 0-7 of 2"_s;
    QTest::newRow("two capacities") << u"apple-silicon-linux"_s << u"4-7 of 1, 0-3 of 1"_s;
    QTest::newRow("virtual") << u"virtual-machine-chip"_s << u"0-1 of 0"_s;
}

void TestCPUClusterFiles::listsTheCPUsOfClusters()
{
    QFETCH(QString, machine);
    QStringList texts;
    for (const CPUCluster &cluster : readCPUClusters(test::machine(machine.toStdString()))) {
        texts << u"%1-%2 of %3"_s.arg(cluster.cpus.front())
                     .arg(cluster.cpus.back())
                     .arg(cluster.policies.size());
    }
    QTEST(texts.join(u", "_s), "clusters");
}

QTEST_GUILESS_MAIN(TestCPUClusterFiles)
#include "tst_CPUClusterFiles.moc"
