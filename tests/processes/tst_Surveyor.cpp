#include "processes/AIProcessDetector.h"
#include "processes/ProcTree.h"
#include "processes/ProcessSampler.h"
#include "processes/Surveyor.h"
#include "support/Waiting.h"

#include <QFile>
#include <QTest>

#include <algorithm>
#include <array>
#include <atomic>
#include <future>
#include <memory>
#include <random>
#include <set>
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
                  .comm = "java\n",
                  .cmdline = QByteArray("java\0app.js\0", 12)});
}

constexpr std::chrono::milliseconds noPatience(1);

/// Processes whose arguments do not arrive until the end of the test.
class Silence {
public:
    explicit Silence(std::set<std::int32_t> pids) : m_pids(std::move(pids)) { }
    ~Silence() { m_end.set_value(); }

    Silence(const Silence &) = delete;
    Silence &operator=(const Silence &) = delete;

    /// The tree's processes, some of them silent.
    ProcessSource over(const ProcTree &tree) const
    {
        ProcessSource source = tree.source();
        source.arguments = [read = source.arguments, reads = m_reads, pids = m_pids,
                            ended = m_ended](std::int32_t pid) {
            ++*reads;
            if (pids.contains(pid))
                ended.wait();
            return read(pid);
        };
        return source;
    }

    int reads() const { return *m_reads; }

private:
    std::set<std::int32_t> m_pids;
    std::shared_ptr<std::atomic<int>> m_reads = std::make_shared<std::atomic<int>>(0);
    std::promise<void> m_end;
    std::shared_future<void> m_ended = m_end.get_future().share();
};

FakeProcess ollama(std::uint64_t own, std::uint64_t startTime = 1)
{
    return {.own = own,
            .startTime = startTime,
            .comm = "ollama\n",
            .cmdline = QByteArray("ollama\0run\0a\0", 13)};
}

QStringList models(const Survey &survey)
{
    QStringList list;
    for (const AIWorkload &workload : survey.workloads)
        list.append(workload.model.value_or(u"-"_s));
    return list;
}

/// By one that has seen nothing before.
Survey surveyOf(const ProcTree &tree)
{
    return Surveyor(tree.source()).take();
}

/// The ranking and the workloads, each from a listing of its own.
std::vector<ProcessRow> rows(const ProcTree &tree)
{
    return ProcessSampler::topByRAM(20, ProcessBridge::ranking({}, tree.source()));
}

std::vector<AIWorkload> workloads(const ProcTree &tree)
{
    FactsCache cache;
    const auto read = [&tree](const ProcessIdentity &process) {
        return std::optional(AIProcessDetector::takeFacts(
            ProcessBridge::processArgsForPID(process.pid, tree.source()),
            QString::fromStdString(tree.source().name(process.pid).value_or(std::string()))));
    };
    return AIProcessDetector::detectAll(ProcessBridge::ranking({}, tree.source()),
                                        tree.source().identity, read, cache);
}

/// Bytes of this process, what it shares divided among those who share it.
qint64 ownMemory()
{
    QFile file(u"/proc/self/smaps_rollup"_s);
    if (!file.open(QFile::ReadOnly))
        return 0;
    for (const QByteArray &line : file.readAll().split('\n')) {
        if (line.startsWith("Pss:"))
            return line.simplified().split(' ').at(1).toLongLong() * 1024;
    }
    return 0;
}

} // namespace

class TestSurveyor : public QObject {
    Q_OBJECT

private slots:
    void equalsRankingAndDetection();
    void equalsThemOnAnyMachine();
    void examinesTheEightyHeaviest();
    void namesThePartsOfAServer();
    void looksAtTheWorkingFolder();
    void keepsWhatAProcessWasWhenItRenamesItself();
    void findsNothingWhereNothingIs();
    void findsProcessesOfThisMachine();
    void reportsTheRankingBeforeItReadsArguments();
    void examinesWhoHoldsMuchOfAGPU();
    void tellsWhatRowsAndWorkloadsHoldOfGPUs();
    void joinsAServerWithItsRunner();
    void leavesAProcessAloneThatDoesNotAnswer();
    void readsNoMoreWhileTwoDoNotAnswer();
    void keepsNoArguments();
    void isSafeFromManyThreads();
};

void TestSurveyor::equalsRankingAndDetection()
{
    ProcTree tree;
    addCrowd(tree, 1000, 30, 900 * MiB);
    tree.add(1,
             {.own = 300 * MiB, .comm = "ollama\n", .cmdline = QByteArray("ollama\0run\0a\0", 13)});
    tree.add(2,
             {.own = 2000 * MiB,
              .comm = "python3\n",
              .cmdline = QByteArray("python3\0-m\0vllm\0--model\0b\0", 26)});
    const Survey survey = surveyOf(tree);
    QCOMPARE(survey.processes.size(), std::size_t(20));
    QCOMPARE(survey.processes.at(0), (ProcessRow{2, u"python3"_s, 2000 * MiB}));
    QCOMPARE(survey.processes.at(19), (ProcessRow{1018, u"java"_s, 882 * MiB}));
    const AIWorkload served{.id = 2,
                            .pid = 2,
                            .processName = u"python3"_s,
                            .framework = AIFramework::vllm,
                            .model = u"b"_s,
                            .memory = 2000 * MiB,
                            .startTime = 1,
                            .details = {.path = u"b"_s}};
    const AIWorkload run{.id = 1,
                         .pid = 1,
                         .processName = u"ollama"_s,
                         .framework = AIFramework::ollama,
                         .model = u"a"_s,
                         .memory = 300 * MiB,
                         .startTime = 1};
    QCOMPARE(survey.workloads, (std::vector<AIWorkload>{served, run}));
    QCOMPARE(survey.processes, rows(tree));
    QCOMPARE(survey.workloads, workloads(tree));
}

void TestSurveyor::equalsThemOnAnyMachine()
{
    // Few sizes, so that equal footprints lie at the ends of both lists; swap in use; names that
    // cannot be read.
    constexpr std::array sizes{1 * MiB, 199 * MiB, 200 * MiB, 300 * MiB};
    const std::array<std::optional<QByteArray>, 4> names{"ollama\n", "python3\n", "java\n", {}};
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
        const Survey survey = surveyOf(tree);
        QCOMPARE(survey.processes.size(), std::size_t(20));
        QVERIFY(!survey.workloads.empty());
        QCOMPARE(survey.processes, rows(tree));
        QCOMPARE(survey.workloads, workloads(tree));
    }
}

void TestSurveyor::examinesTheEightyHeaviest()
{
    ProcTree tree;
    addCrowd(tree, 1000, 79, 900 * MiB);
    tree.add(1, {.own = 300 * MiB, .comm = "ollama\n"});
    QCOMPARE(surveyOf(tree).workloads.size(), std::size_t(1));
    addCrowd(tree, 2000, 1, 301 * MiB); // Now it is the 81st.
    QCOMPARE(surveyOf(tree).workloads.size(), std::size_t(0));
    QCOMPARE(workloads(tree).size(), std::size_t(0));
}

void TestSurveyor::namesThePartsOfAServer()
{
    // A light server, its engine under a title, and a worker whose own parent is that engine.
    ProcTree tree;
    tree.add(10,
             {.own = 50 * MiB,
              .comm = "vllm\n",
              .cmdline = QByteArray("python3\0/bin/vllm\0serve\0Qwen/Qwen3-8B\0", 38)});
    tree.add(11,
             {.own = 900 * MiB,
              .parent = 10,
              .comm = "VLLM::EngineCor\n",
              .cmdline = QByteArray("VLLM::EngineCore\0\0\0", 19)});
    const QByteArray worker("python3\0-c\0from multiprocessing.spawn import spawn_main\0", 57);
    tree.add(12, {.own = 800 * MiB, .parent = 11, .comm = "python3\n", .cmdline = worker});
    // The same without a server, and one whose ancestors run in a circle.
    tree.add(20, {.own = 700 * MiB, .comm = "python3\n", .cmdline = worker});
    tree.add(21, {.own = 600 * MiB, .parent = 21, .comm = "python3\n", .cmdline = worker});
    tree.add(22,
             {.own = 500 * MiB, .parent = 99, .comm = "VLLM::Worker\n", .cmdline = "VLLM::Worker"});
    const Survey survey = surveyOf(tree);
    QCOMPARE(models(survey), (QStringList{u"Qwen/Qwen3-8B"_s, u"-"_s}));
    QCOMPARE(survey.workloads.at(0).parts.size(), std::size_t(2)); // Engine and worker.
    for (const AIWorkload &workload : survey.workloads)
        QCOMPARE(workload.framework, AIFramework::vllm);
    QCOMPARE(survey.workloads.at(0).details.origin, ModelOrigin::server);
}

void TestSurveyor::looksAtTheWorkingFolder()
{
    ProcTree tree;
    const QByteArray script("python3\0main.py\0", 16);
    tree.add(1, {.own = 400 * MiB, .comm = "python3\n", .cmdline = script, .cwd = "/srv/ComfyUI"});
    tree.add(2, {.own = 300 * MiB, .comm = "python3\n", .cmdline = script, .cwd = "/srv/site"});
    tree.add(3, {.own = 300 * MiB, .comm = "python3\n", .cmdline = script});
    const Survey survey = surveyOf(tree);
    QCOMPARE(survey.workloads.size(), std::size_t(1));
    QCOMPARE(survey.workloads.at(0).pid, 1);
    QCOMPARE(survey.workloads.at(0).framework, AIFramework::comfyUI);
}

void TestSurveyor::keepsWhatAProcessWasWhenItRenamesItself()
{
    ProcTree tree;
    const QByteArray served("python3\0/bin/vllm\0serve\0a/b\0", 28);
    tree.add(1, {.own = 400 * MiB, .comm = "vllm\n", .cmdline = served});
    Surveyor surveyor(tree.source());
    QCOMPARE(models(surveyor.take()), QStringList{u"a/b"_s});
    tree.add(1, {.own = 400 * MiB, .comm = "VLLM::Router\n", .cmdline = served});
    QCOMPARE(models(surveyor.take()), QStringList{u"a/b"_s});
}

void TestSurveyor::findsNothingWhereNothingIs()
{
    const Survey survey = Surveyor(linuxProcesses("/nowhere")).take();
    QVERIFY(survey.processes.empty());
    QVERIFY(survey.workloads.empty());
}

void TestSurveyor::findsProcessesOfThisMachine()
{
    const Survey survey = systemSurveys().take({});
    QVERIFY(!survey.processes.empty());
    QVERIFY(survey.processes.size() <= 20);
    QVERIFY(std::ranges::is_sorted(survey.processes, std::greater(), &ProcessRow::memory));
}

void TestSurveyor::reportsTheRankingBeforeItReadsArguments()
{
    ProcTree tree;
    tree.add(1, ollama(300 * MiB));
    QStringList order;
    ProcessSource source = tree.source();
    source.arguments = [&order, read = source.arguments](std::int32_t pid) {
        order.append(u"arguments"_s);
        return read(pid);
    };
    Surveyor surveyor(source);
    const auto take = [&] {
        return surveyor.take([&order](const std::vector<ProcessRow> &rows) {
            order.append(u"ranking of %1"_s.arg(rows.size()));
        });
    };
    QCOMPARE(models(take()), QStringList{u"a"_s});
    QCOMPARE(order, (QStringList{u"ranking of 1"_s, u"arguments"_s}));
    // Nothing is left to be read.
    QCOMPARE(models(take()), QStringList{u"a"_s});
    QCOMPARE(order.size(), 2);
}

void TestSurveyor::leavesAProcessAloneThatDoesNotAnswer()
{
    ProcTree tree;
    tree.add(1, ollama(400 * MiB));
    tree.add(2, ollama(300 * MiB));
    const Silence silence({1});
    Surveyor surveyor(silence.over(tree), noPatience * 200);
    QCOMPARE(models(surveyor.take()), (QStringList{u"-"_s, u"a"_s}));
    QCOMPARE(silence.reads(), 2);
    QCOMPARE(models(surveyor.take()), (QStringList{u"-"_s, u"a"_s}));
    QCOMPARE(silence.reads(), 2);

    // Also when it was off the ranking in the meantime.
    addCrowd(tree, 1000, 80, 900 * MiB);
    QCOMPARE(models(surveyor.take()), QStringList());
    for (int pid = 1000; pid < 1080; ++pid)
        tree.remove(pid, "");
    QCOMPARE(models(surveyor.take()), (QStringList{u"-"_s, u"a"_s}));
    QCOMPARE(silence.reads(), 3);

    // Until its number is another process's.
    tree.remove(1, "");
    QCOMPARE(models(surveyor.take()), QStringList{u"a"_s});
    tree.add(1, ollama(400 * MiB, 2));
    QCOMPARE(models(surveyor.take()), (QStringList{u"-"_s, u"a"_s}));
    QCOMPARE(silence.reads(), 4);
}

void TestSurveyor::readsNoMoreWhileTwoDoNotAnswer()
{
    ProcTree tree;
    for (const int pid : {1, 2, 3})
        tree.add(pid, ollama(400 * MiB));
    auto silence = std::make_unique<Silence>(std::set{1, 2});
    Surveyor surveyor(silence->over(tree), noPatience * 200);
    QCOMPARE(models(surveyor.take()), (QStringList{u"-"_s, u"-"_s, u"-"_s}));
    QCOMPARE(silence->reads(), 2);
    silence.reset();
    // The third one was never asked.
    TRY_COMPARE(models(surveyor.take()), (QStringList{u"-"_s, u"-"_s, u"a"_s}));
}

/// Six blocks of six megabytes would show in the memory of this process.
void TestSurveyor::keepsNoArguments()
{
    ProcTree tree;
    const QByteArray block =
        QByteArray("python3\0-m\0vllm\0--model\0b\0--key\0", 33) + QByteArray(6 * MiB, 'x') + '\0';
    for (int pid = 1; pid <= 6; ++pid)
        tree.add(pid, {.own = 300 * MiB, .comm = "python3\n", .cmdline = block});
    Surveyor surveyor(tree.source());
    const qint64 before = ownMemory();
    QVERIFY(before > 0);
    for (int survey = 0; survey < 3; ++survey)
        QCOMPARE(surveyor.take().workloads.size(), std::size_t(6));
    const qint64 grown = ownMemory() - before;
    QVERIFY2(grown < qint64(8 * MiB), qPrintable(QString::number(grown)));
}

void TestSurveyor::isSafeFromManyThreads()
{
    ProcTree tree;
    addCrowd(tree, 1000, 5, 900 * MiB);
    tree.add(1,
             {.own = 300 * MiB, .comm = "ollama\n", .cmdline = QByteArray("ollama\0run\0a\0", 13)});
    Surveyor surveyor(tree.source());
    const Survey expected = surveyor.take();
    std::atomic<int> differing = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int pass = 0; pass < 20; ++pass)
                differing += surveyor.take() != expected;
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(differing.load(), 0);
}

void TestSurveyor::examinesWhoHoldsMuchOfAGPU()
{
    ProcTree tree;
    addCrowd(tree, 1000, 100, 900 * MiB);
    tree.add(7, ollama(50 * MiB)); // Neither heavy nor among the heaviest.
    tree.add(8, ollama(50 * MiB)); // Holds too little.
    const auto gpus = std::make_shared<GPUHandOver>();
    gpus->publish({{.device = "card",
                    .processes = {{{.pid = 7, .bytes = 200 * MiB, .busyFraction = 0.5},
                                   {.pid = 8, .bytes = 200 * MiB - 1}}}}});
    Surveyor surveyor(tree.source(), Surveyor::argumentsPatience,
                      std::make_shared<GPUClients>(gpus, tree.root()));
    const Survey survey = surveyor.take();
    QCOMPARE(survey.workloads.size(), std::size_t(1));
    QCOMPARE(survey.workloads[0].pid, 7);
    QCOMPARE(survey.workloads[0].memory, 50 * MiB);
    QCOMPARE(survey.workloads[0].gpuMemory, std::optional(200 * MiB));
    QCOMPARE(survey.workloads[0].gpuFraction, std::optional(0.5));
    QCOMPARE(survey.processes.size(), std::size_t(20)); // The ranking is by memory alone.
}

void TestSurveyor::tellsWhatRowsAndWorkloadsHoldOfGPUs()
{
    ProcTree tree;
    tree.add(7, ollama(300 * MiB));
    tree.add(8, {.own = 400 * MiB, .comm = "game\n"});
    tree.add(9, {.own = 500 * MiB, .comm = "editor\n"});
    const auto gpus = std::make_shared<GPUHandOver>();
    gpus->publish(
        {{.device = "card",
          .processes = {{{.pid = 7, .bytes = 5000 * MiB}, {.pid = 8, .bytes = 70 * MiB}}}}});
    Surveyor surveyor(tree.source(), Surveyor::argumentsPatience,
                      std::make_shared<GPUClients>(gpus, tree.root()));
    const Survey survey = surveyor.take();
    QCOMPARE(survey.processes.size(), std::size_t(3));
    QVERIFY(!survey.processes[0].gpuMemory);
    QCOMPARE(survey.processes[1].gpuMemory, std::optional(70 * MiB));
    QCOMPARE(survey.processes[2].gpuMemory, std::optional(5000 * MiB));
    QCOMPARE(survey.gpuHolders.size(), std::size_t(1));
    QVERIFY((survey.gpuHolders[0]
             == GPUHolders{u"card"_s, 5000 * MiB, u"ollama"_s, 5000 * MiB, 5070 * MiB}));
}

void TestSurveyor::joinsAServerWithItsRunner()
{
    ProcTree tree;
    FakeProcess server = ollama(300 * MiB);
    server.cmdline = QByteArray("ollama\0serve\0", 13);
    tree.add(7, server);
    FakeProcess runner = ollama(400 * MiB);
    runner.parent = 7;
    tree.add(8, runner);
    const Survey survey = surveyOf(tree);
    QCOMPARE(survey.workloads.size(), std::size_t(1));
    QCOMPARE(survey.workloads[0].pid, 8); // It names the model.
    QCOMPARE(survey.workloads[0].memory, 700 * MiB);
    QCOMPARE(survey.workloads[0].model, std::optional(u"a"_s));
    QCOMPARE(survey.workloads[0].parts.size(), std::size_t(2));
    QCOMPARE(survey.workloads[0].parts[1].pid, 7);
}

QTEST_APPLESS_MAIN(TestSurveyor)
#include "tst_Surveyor.moc"
