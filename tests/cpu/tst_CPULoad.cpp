#include "cpu/CPULoad.h"

#include <QTest>

using namespace corvane;

using Clusters = std::vector<CPUCluster>;
using CPU = std::optional<int>;

Q_DECLARE_METATYPE(CPUSnapshot)
Q_DECLARE_METATYPE(Clusters)
Q_DECLARE_METATYPE(CPU)
Q_DECLARE_METATYPE(std::vector<CoreTicks>)

namespace {

/// Counters of one CPU, with all active ticks in user mode.
CoreTicks ticks(std::uint32_t active, std::uint32_t idle)
{
    return {.user = active, .idle = idle};
}

/// Two CPUs with one policy over both and three states.
Clusters oneCluster()
{
    return {{.cpus = {0, 1},
             .policies = {{"policy0", {0, 1}}},
             .kHz = {1'000'000, 2'000'000, 3'000'000}}};
}

/// One cluster without a present frequency or times in states.
CPUSnapshot snapshot(const std::vector<CoreTicks> &cpus)
{
    return {.ticks = cpus, .clusters = {{.policyTimes = {{}}}}};
}

} // namespace

class TestCPULoad : public QObject {
    Q_OBJECT

private slots:
    void measuresLoad_data();
    void measuresLoad();
    void findsTheBusiestCPU_data();
    void findsTheBusiestCPU();
};

constexpr double unknown = -1;

void TestCPULoad::measuresLoad_data()
{
    QTest::addColumn<Clusters>("clusters");
    QTest::addColumn<CPUSnapshot>("from");
    QTest::addColumn<CPUSnapshot>("to");
    QTest::addColumn<double>("fraction");
    QTest::addColumn<double>("megahertz");
    const CPUSnapshot start = snapshot({ticks(0, 0), ticks(0, 0)});

    CPUSnapshot now = snapshot({ticks(30, 70), ticks(10, 90)});
    now.clusters[0].presentKHz = 2'400'000;
    QTest::newRow("active time counts at the state next to the present frequency")
        << oneCluster() << start << now << 0.2 << 2000.0;

    now.clusters[0].presentKHz.reset();
    QTest::newRow("active time at an unknown frequency counts for the load alone")
        << oneCluster() << start << now << 0.2 << 0.0;

    CPUSnapshot timesBefore = start;
    timesBefore.clusters[0].policyTimes[0] = {{3'000'000, 500}, {2'000'000, 700}, {1'000'000, 0}};
    CPUSnapshot timesNow = now;
    timesNow.clusters[0].policyTimes[0] = {{3'000'000, 575}, {2'000'000, 700}, {1'000'000, 25}};
    QTest::newRow("times in states split the active time")
        << oneCluster() << timesBefore << timesNow << 0.2 << 2500.0;

    timesNow.clusters[0].policyTimes[0] = {{3'000'000, 10}, {2'000'000, 30}, {1'000'000, 0}};
    QTest::newRow("times that fell count from 0")
        << oneCluster() << timesBefore << timesNow << 0.2 << 2250.0;

    timesNow.clusters[0] = timesBefore.clusters[0];
    timesNow.clusters[0].presentKHz = 900'000;
    QTest::newRow("times that stand still leave the present frequency")
        << oneCluster() << timesBefore << timesNow << 0.2 << 1000.0;

    Clusters split = oneCluster();
    split[0].policies = {{"policy0", {0}}, {"policy1", {1}}};
    CPUSnapshot splitBefore = start;
    splitBefore.clusters[0].policyTimes = {{{3'000'000, 0}, {1'000'000, 0}},
                                           {{3'000'000, 0}, {1'000'000, 0}}};
    CPUSnapshot splitNow = now;
    splitNow.clusters[0].policyTimes = {{{3'000'000, 100}, {1'000'000, 0}},
                                        {{3'000'000, 0}, {1'000'000, 100}}};
    QTest::newRow("each policy splits the active time of its own CPUs")
        << split << splitBefore << splitNow << 0.2 << 2500.0;

    Clusters constant = oneCluster();
    constant[0].kHz = {2'596'142};
    constant[0].policies = {};
    QTest::newRow("a single state has all the active time")
        << constant << start << now << 0.2 << 2596.142;

    Clusters bare = constant;
    bare[0].kHz = {};
    QTest::newRow("no state is known") << bare << start << now << 0.2 << 0.0;
    QTest::newRow("an idle machine")
        << constant << start << snapshot({ticks(0, 100), ticks(0, 100)}) << 0.0 << 0.0;
    QTest::newRow("no time passed") << constant << start << start << unknown << 0.0;
    QTest::newRow("a CPU that went offline adds no time")
        << constant << snapshot({ticks(5, 5), ticks(7, 9)})
        << snapshot({ticks(15, 95), ticks(7, 9)}) << 0.1 << 2596.142;
    QTest::newRow("a CPU that is in neither snapshot adds no time")
        << constant << snapshot({ticks(0, 0)}) << snapshot({ticks(10, 90)}) << 0.1 << 2596.142;
    QTest::newRow("counters wrap at 32 bits")
        << constant << snapshot({ticks(4294967290u, 4294967295u)}) << snapshot({ticks(4, 89)})
        << 0.1 << 2596.142;

    const Clusters hybrid = {{.cpus = {0}, .kHz = {4'000'000}}, {.cpus = {1}, .kHz = {2'000'000}}};
    CPUSnapshot hybridFrom = start;
    hybridFrom.clusters = {{}, {}};
    CPUSnapshot hybridTo = now;
    hybridTo.clusters = {{}, {}};
    QTest::newRow("the frequency is the mean over the active time of both clusters")
        << hybrid << hybridFrom << hybridTo << 0.2 << 3500.0;

    QTest::newRow("the counters could not be read")
        << constant << start << CPUSnapshot{} << unknown << 0.0;
    QTest::newRow("the counters could not be read before")
        << constant << CPUSnapshot{} << now << unknown << 0.0;
}

void TestCPULoad::measuresLoad()
{
    QFETCH(Clusters, clusters);
    QFETCH(CPUSnapshot, from);
    QFETCH(CPUSnapshot, to);
    const CPULoad load = cpuLoad(from, to, clusters);
    QTEST(load.activeFraction.value_or(unknown), "fraction");
    QTEST(load.activeMHz, "megahertz");
}

void TestCPULoad::findsTheBusiestCPU_data()
{
    QTest::addColumn<std::vector<CoreTicks>>("before");
    QTest::addColumn<std::vector<CoreTicks>>("now");
    QTest::addColumn<CPU>("busiest"); // Of CPUs 1 and 2.
    const std::vector<CoreTicks> start(3);
    QTest::newRow("the one with the most active ticks")
        << start << std::vector{ticks(90, 0), ticks(10, 90), ticks(20, 80)} << CPU(2);
    QTest::newRow("of equals the first")
        << start << std::vector{ticks(0, 0), ticks(10, 0), ticks(10, 0)} << CPU(1);
    QTest::newRow("time in the system and at a low priority is active")
        << start << std::vector<CoreTicks>{{}, {.system = 5, .nice = 5}, {.user = 9}} << CPU(1);
    QTest::newRow("none was active")
        << start << std::vector{ticks(90, 0), ticks(0, 100), ticks(0, 100)} << CPU();
    QTest::newRow("there was no earlier reading")
        << std::vector<CoreTicks>{} << std::vector{ticks(1, 1), ticks(1, 1), ticks(1, 1)} << CPU();
}

void TestCPULoad::findsTheBusiestCPU()
{
    QFETCH(std::vector<CoreTicks>, before);
    QFETCH(std::vector<CoreTicks>, now);
    QTEST(busiestCPU({1, 2}, before, now), "busiest");
}

QTEST_GUILESS_MAIN(TestCPULoad)
#include "tst_CPULoad.moc"
