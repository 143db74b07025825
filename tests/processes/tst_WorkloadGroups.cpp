#include "processes/WorkloadGroups.h"

#include <QTest>

using namespace corvane;
using namespace Qt::StringLiterals;

namespace {

using Parents = QMap<int, int>;

ProcessFamily familyOf(const Parents &parents)
{
    return ProcessFamily([parents](std::int32_t pid) {
        return parents.contains(pid) ? std::optional(parents[pid]) : std::nullopt;
    });
}

AIWorkload workload(std::int64_t pid, std::uint64_t memory, const QString &model = {},
                    AIFramework framework = AIFramework::llamaCpp)
{
    return {.id = pid,
            .pid = pid,
            .processName = u"p%1"_s.arg(pid),
            .framework = framework,
            .model = model.isEmpty() ? std::nullopt : std::optional(model),
            .memory = memory};
}

/// "1 of 300 bytes with m: 1 2" with its parts.
QString textOf(const AIWorkload &workload)
{
    QString text = u"%1 of %2 bytes"_s.arg(workload.pid).arg(workload.memory);
    if (workload.gpuMemory)
        text += u" and %1"_s.arg(*workload.gpuMemory);
    if (workload.model)
        text += u" with "_s + *workload.model;
    for (const WorkloadPart &part : workload.parts) {
        text += part.pid == workload.parts[0].pid ? u": "_s : u", "_s;
        text += part.name;
        if (part.gpuMemory)
            text += u" %1"_s.arg(*part.gpuMemory);
    }
    return text;
}

QStringList textsOf(const std::vector<AIWorkload> &workloads)
{
    QStringList texts;
    for (const AIWorkload &workload : workloads)
        texts << textOf(workload);
    return texts;
}

} // namespace

class TestWorkloadGroups : public QObject {
    Q_OBJECT

private slots:
    void joinsProcessesOfOneServer_data();
    void joinsProcessesOfOneServer();
    void findsAncestors_data();
    void findsAncestors();
    void readsEachParentOnce();
    void longLinesOfDescentStayOneWorkload();
    void addsWhatIsHeldOfGPUs();
    void childrenThatHoldGPUMemoryBecomeParts();
    void withoutGPUsNothingIsAdded();
};

void TestWorkloadGroups::joinsProcessesOfOneServer_data()
{
    QTest::addColumn<std::vector<AIWorkload>>("workloads");
    QTest::addColumn<Parents>("parents");
    QTest::addColumn<QStringList>("texts");
    const auto row = [](const char *name, const std::vector<AIWorkload> &workloads,
                        const Parents &parents, const QStringList &texts) {
        QTest::newRow(name) << workloads << parents << texts;
    };
    row("a server and its runner", {workload(2, 500, u"m"_s), workload(10, 300)}, {{2, 10}},
        {u"2 of 800 bytes with m: p2, p10"_s});
    row("a router and the servers behind it: the largest one's model",
        {workload(3, 500, u"b"_s), workload(2, 400, u"a"_s), workload(10, 300)}, {{2, 10}, {3, 10}},
        {u"3 of 1200 bytes with b: p3, p2, p10"_s});
    row("a server's own model comes first", {workload(2, 500, u"b"_s), workload(10, 300, u"a"_s)},
        {{2, 10}}, {u"10 of 800 bytes with a: p10, p2"_s});
    row("a wrapper between them", {workload(3, 500, u"m"_s), workload(10, 300)}, {{3, 2}, {2, 10}},
        {u"3 of 800 bytes with m: p3, p10"_s});
    row("grandchildren belong to the whole",
        {workload(3, 500), workload(2, 400), workload(10, 300)}, {{3, 2}, {2, 10}},
        {u"3 of 1200 bytes: p3, p2, p10"_s});
    row("another framework stays by itself",
        {workload(2, 500, u"m"_s, AIFramework::vllm), workload(10, 300)}, {{2, 10}},
        {u"2 of 500 bytes with m"_s, u"10 of 300 bytes"_s});
    row("two servers of one shell", {workload(3, 500), workload(2, 400)}, {{3, 10}, {2, 10}},
        {u"3 of 500 bytes"_s, u"2 of 400 bytes"_s});
    row("no known parents", {workload(2, 500), workload(10, 300)}, {},
        {u"2 of 500 bytes"_s, u"10 of 300 bytes"_s});
    row("a joined workload may become the largest",
        {workload(4, 600), workload(3, 500), workload(2, 400)}, {{3, 2}},
        {u"3 of 900 bytes: p3, p2"_s, u"4 of 600 bytes"_s});
    row("parents in a circle", {workload(4, 3), workload(3, 2), workload(2, 1)},
        {{4, 3}, {3, 2}, {2, 4}}, {u"4 of 3 bytes"_s, u"3 of 2 bytes"_s, u"2 of 1 bytes"_s});
    row("a process that is its own parent", {workload(2, 5)}, {{2, 2}}, {u"2 of 5 bytes"_s});
    row("none", {}, {}, {});
}

void TestWorkloadGroups::joinsProcessesOfOneServer()
{
    QFETCH(std::vector<AIWorkload>, workloads);
    QFETCH(Parents, parents);
    ProcessFamily family = familyOf(parents);
    QTEST(textsOf(joinedWorkloads(workloads, family)), "texts");
}

void TestWorkloadGroups::findsAncestors_data()
{
    QTest::addColumn<Parents>("parents");
    QTest::addColumn<QList<int>>("ancestors");
    QTest::newRow("up to the system's first process")
        << Parents{{9, 8}, {8, 7}, {7, 1}} << QList<int>{8, 7};
    QTest::newRow("none") << Parents{{9, 1}} << QList<int>{};
    QTest::newRow("not known") << Parents{} << QList<int>{};
    QTest::newRow("no such number") << Parents{{9, 0}} << QList<int>{};
    QTest::newRow("a circle ends where it began") << Parents{{9, 8}, {8, 9}} << QList<int>{8};
    QTest::newRow("a circle of its ancestors alone")
        << Parents{{9, 8}, {8, 7}, {7, 8}} << QList<int>{8, 7};
    QTest::newRow("eight at most") << Parents{{9, 10},  {10, 11}, {11, 12}, {12, 13}, {13, 14},
                                              {14, 15}, {15, 16}, {16, 17}, {17, 18}, {18, 19}}
                                   << QList<int>{10, 11, 12, 13, 14, 15, 16, 17};
}

void TestWorkloadGroups::findsAncestors()
{
    QFETCH(Parents, parents);
    const auto ancestors = familyOf(parents).ancestorsOf(9);
    QTEST(QList<int>(ancestors.begin(), ancestors.end()), "ancestors");
}

void TestWorkloadGroups::readsEachParentOnce()
{
    int reads = 0;
    ProcessFamily family([&reads](std::int32_t pid) {
        ++reads;
        return std::optional(pid - 1);
    });
    family.ancestorsOf(5);
    QCOMPARE(reads, 4);
    family.ancestorsOf(4);
    QCOMPARE(reads, 4);
}

void TestWorkloadGroups::longLinesOfDescentStayOneWorkload()
{
    std::vector<AIWorkload> workloads;
    Parents parents;
    for (int pid = 30; pid > 1; --pid) {
        workloads.push_back(workload(pid, 1));
        parents[pid] = pid - 1;
    }
    ProcessFamily family = familyOf(parents);
    const auto joined = joinedWorkloads(workloads, family);
    QCOMPARE(joined.size(), std::size_t(1));
    QCOMPARE(joined[0].pid, 30);
    QCOMPARE(joined[0].memory, std::uint64_t(29));
    QCOMPARE(pidsOf(joined[0]).size(), std::size_t(29));
}

void TestWorkloadGroups::addsWhatIsHeldOfGPUs()
{
    const GPUShares shares({{"card", {.pid = 10, .bytes = 100, .busyFraction = 0.25}},
                            {"card", {.pid = 2, .bytes = 7000, .busyFraction = 0.5}},
                            {"card", {.pid = 5, .bytes = 400}}});
    ProcessFamily family = familyOf({{2, 10}});
    std::vector<AIWorkload> workloads = joinedWorkloads(
        {workload(4, 5000), workload(5, 900), workload(2, 500), workload(10, 300)}, family);
    addGPUUse(workloads, shares, family, [](std::int32_t) { return QString(); });
    QCOMPARE(textsOf(workloads),
             (QStringList{u"2 of 800 bytes and 7100: p2 7000, p10 100"_s, u"4 of 5000 bytes"_s,
                          u"5 of 900 bytes and 400"_s}));
    QCOMPARE(workloads[0].gpuFraction, std::optional(0.75));
    QVERIFY(!workloads[1].gpuFraction);
}

void TestWorkloadGroups::childrenThatHoldGPUMemoryBecomeParts()
{
    constexpr std::uint64_t MiB = 1 << 20;
    const GPUShares shares({{"card", {.pid = 7, .bytes = 5 * MiB}},   // A grandchild.
                            {"card", {.pid = 8, .bytes = MiB - 1}},   // Draws something.
                            {"card", {.pid = 9, .bytes = 5 * MiB}}}); // A stranger.
    ProcessFamily family = familyOf({{7, 6}, {6, 2}, {8, 2}, {9, 3}});
    std::vector<AIWorkload> workloads = {workload(2, 500)};
    addGPUUse(workloads, shares, family, [](std::int32_t pid) { return u"n%1"_s.arg(pid); });
    QCOMPARE(textsOf(workloads), QStringList{u"2 of 500 bytes and 5242880: p2, n7 5242880"_s});
    QVERIFY(!workloads[0].parts[1].memory); // Not known here, which is not 0.
}

void TestWorkloadGroups::withoutGPUsNothingIsAdded()
{
    ProcessFamily family = familyOf({});
    std::vector<AIWorkload> workloads = {workload(2, 500)};
    addGPUUse(workloads, GPUShares({}), family, [](std::int32_t) { return QString(); });
    QCOMPARE(textsOf(workloads), QStringList{u"2 of 500 bytes"_s});
}

QTEST_GUILESS_MAIN(TestWorkloadGroups)
#include "tst_WorkloadGroups.moc"
