#include "cpu/CPUClusters.h"

#include <QTest>

using namespace corvane;

using Clusters = std::vector<std::vector<int>>;

Q_DECLARE_METATYPE(CPUTopology)
Q_DECLARE_METATYPE(Clusters)

class TestCPUClusters : public QObject {
    Q_OBJECT

private slots:
    void sortsCPUs_data();
    void sortsCPUs();
};

void TestCPUClusters::sortsCPUs_data()
{
    QTest::addColumn<CPUTopology>("topology");
    QTest::addColumn<Clusters>("clusters");
    QTest::newRow("no CPU is present") << CPUTopology{} << Clusters{};
    QTest::newRow("CPUs that do not differ")
        << CPUTopology{.present = "0-3\n"} << Clusters{{0, 1, 2, 3}};
    QTest::newRow("numbers have gaps") << CPUTopology{.present = "0,2-3\n"} << Clusters{{0, 2, 3}};
    QTest::newRow("a hybrid of two kinds")
        << CPUTopology{.present = "0-5\n", .performanceList = "0-1\n", .efficiencyList = "2-5\n"}
        << Clusters{{0, 1}, {2, 3, 4, 5}};
    QTest::newRow("a hybrid of three kinds") << CPUTopology{.present = "0-7\n",
                                                            .performanceList = "0-1\n",
                                                            .efficiencyList = "2-5\n",
                                                            .lowPowerList = "6-7\n"}
                                             << Clusters{{0, 1}, {2, 3, 4, 5, 6, 7}};
    QTest::newRow("a hybrid whose large cores are switched off for good")
        << CPUTopology{.present = "4-7\n", .performanceList = "\n", .efficiencyList = "4-7\n"}
        << Clusters{{4, 5, 6, 7}};
    QTest::newRow("equal capacities")
        << CPUTopology{.present = "0-1\n", .capacities = {{0, 1024}, {1, 1024}}}
        << Clusters{{0, 1}};
    QTest::newRow("three capacities: one fast kind")
        << CPUTopology{.present = "0-3\n", .capacities = {{0, 300}, {1, 300}, {2, 800}, {3, 1024}}}
        << Clusters{{3}, {0, 1, 2}};
    QTest::newRow("a CPU without a capacity is taken for a fast one")
        << CPUTopology{.present = "0-2\n", .capacities = {{0, 300}, {1, 1024}}}
        << Clusters{{1, 2}, {0}};
    QTest::newRow("the lists of a hybrid come before capacities")
        << CPUTopology{.present = "0-1\n",
                       .performanceList = "0\n",
                       .efficiencyList = "1\n",
                       .capacities = {{0, 500}, {1, 1024}}}
        << Clusters{{0}, {1}};
    QTest::newRow("a garbled list") << CPUTopology{.present = "0-1,x\n"} << Clusters{{0, 1}};
}

void TestCPUClusters::sortsCPUs()
{
    QFETCH(CPUTopology, topology);
    QTEST(cpusByCluster(topology), "clusters");
}

QTEST_GUILESS_MAIN(TestCPUClusters)
#include "tst_CPUClusters.moc"
