#include "processes/AIProcessDetector.h"
#include "processes/ProcTree.h"
#include "processes/ProcessSampler.h"
#include "processes/Survey.h"

#include <QTest>

#include <algorithm>
#include <array>
#include <atomic>
#include <random>
#include <thread>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

namespace {

constexpr std::uint64_t MiB = 1 << 20;

/// Processes from `first` on, the `i`-th one holding `i` MiB less than the first.
void addCrowd(ProcTree &tree, int first, int count, std::uint64_t heaviest)
{
    for (int i = 0; i < count; ++i)
        tree.add(first + i,
                 {.own = heaviest - static_cast<std::uint64_t>(i) * MiB,
                  .comm = "node\n",
                  .cmdline = QByteArray("node\0app.js\0", 12)});
}

/// The ranking and the workloads, each from a listing of its own.
std::vector<ProcessRow> rows(const ProcTree &tree)
{
    return ProcessSampler::topByRAM(20, ProcessBridge::ranking({}, tree.source()));
}

std::vector<AIWorkload> workloads(const ProcTree &tree)
{
    return AIProcessDetector::detectAll(ProcessBridge::ranking({}, tree.source()),
                                        ProcessBridge::argumentReader(tree.source()));
}

} // namespace

class TestSurvey : public QObject {
    Q_OBJECT

private slots:
    void equalsRankingAndDetection();
    void equalsThemOnAnyMachine();
    void examinesTheEightyHeaviest();
    void findsNothingWhereNothingIs();
    void findsProcessesOfThisMachine();
    void isSafeFromManyThreads();
};

void TestSurvey::equalsRankingAndDetection()
{
    ProcTree tree;
    addCrowd(tree, 1000, 30, 900 * MiB);
    tree.add(1,
             {.own = 300 * MiB, .comm = "ollama\n", .cmdline = QByteArray("ollama\0run\0a\0", 13)});
    tree.add(2,
             {.own = 2000 * MiB,
              .comm = "python3\n",
              .cmdline = QByteArray("python3\0-m\0vllm\0--model\0b\0", 26)});
    const Survey survey = surveyOf(tree.source());
    QCOMPARE(survey.processes.size(), std::size_t(20));
    QCOMPARE(survey.processes.at(0), (ProcessRow{2, u"python3"_s, 2000 * MiB}));
    QCOMPARE(survey.processes.at(19), (ProcessRow{1018, u"node"_s, 882 * MiB}));
    QCOMPARE(
        survey.workloads,
        (std::vector<AIWorkload>{{2, 2, u"python3"_s, AIFramework::vllm, u"b"_s, 2000 * MiB},
                                 {1, 1, u"ollama"_s, AIFramework::ollama, u"a"_s, 300 * MiB}}));
    QCOMPARE(survey.processes, rows(tree));
    QCOMPARE(survey.workloads, workloads(tree));
}

void TestSurvey::equalsThemOnAnyMachine()
{
    // Few sizes, so that equal footprints lie at the ends of both lists; swap in use; names that
    // cannot be read.
    constexpr std::array sizes{1 * MiB, 199 * MiB, 200 * MiB, 300 * MiB};
    const std::array<std::optional<QByteArray>, 4> names{"ollama\n", "python3\n", "node\n", {}};
    std::mt19937 random(7);
    const auto oneOf = [&random](const auto &list) { return list[random() % list.size()]; };
    for (int machine = 0; machine < 2; ++machine) {
        ProcTree tree;
        tree.setSwap(4096 * MiB, 3000 * MiB);
        for (int pid = 1; pid <= 100; ++pid)
            tree.add(pid,
                     {.own = oneOf(sizes),
                      .room = 400 * MiB,
                      .swapped = oneOf(std::array{0 * MiB, 1 * MiB, 100 * MiB}),
                      .comm = oneOf(names),
                      .cmdline = QByteArray("x\0-m\0mlx\0", 9)});
        const Survey survey = surveyOf(tree.source());
        QCOMPARE(survey.processes.size(), std::size_t(20));
        QVERIFY(!survey.workloads.empty());
        QCOMPARE(survey.processes, rows(tree));
        QCOMPARE(survey.workloads, workloads(tree));
    }
}

void TestSurvey::examinesTheEightyHeaviest()
{
    ProcTree tree;
    addCrowd(tree, 1000, 79, 900 * MiB);
    tree.add(1, {.own = 300 * MiB, .comm = "ollama\n"});
    QCOMPARE(surveyOf(tree.source()).workloads.size(), std::size_t(1));
    addCrowd(tree, 2000, 1, 301 * MiB); // Now it is the 81st.
    QCOMPARE(surveyOf(tree.source()).workloads.size(), std::size_t(0));
    QCOMPARE(workloads(tree).size(), std::size_t(0));
}

void TestSurvey::findsNothingWhereNothingIs()
{
    const Survey survey = surveyOf(linuxProcesses("/nowhere"));
    QVERIFY(survey.processes.empty());
    QVERIFY(survey.workloads.empty());
}

void TestSurvey::findsProcessesOfThisMachine()
{
    const Survey survey = takeSurvey();
    QVERIFY(!survey.processes.empty());
    QVERIFY(survey.processes.size() <= 20);
    QVERIFY(std::ranges::is_sorted(survey.processes, std::greater(), &ProcessRow::memory));
}

void TestSurvey::isSafeFromManyThreads()
{
    ProcTree tree;
    addCrowd(tree, 1000, 5, 900 * MiB);
    tree.add(1,
             {.own = 300 * MiB, .comm = "ollama\n", .cmdline = QByteArray("ollama\0run\0a\0", 13)});
    const Survey expected = surveyOf(tree.source());
    std::atomic<int> differing = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int pass = 0; pass < 20; ++pass)
                differing += surveyOf(tree.source()) != expected;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(differing.load(), 0);
}

QTEST_APPLESS_MAIN(TestSurvey)
#include "tst_Survey.moc"
