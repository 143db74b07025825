#include "processes/ProcessBridge.h"
#include "processes/ProcessSampler.h"
#include "simulated_mac/SimulatedMac.h"

#include <QTest>

using namespace corvane;
using namespace corvane::simulated;

using Records = std::vector<ProcessRecord>;

namespace {

constexpr int pid = 500;

void bootWith(std::vector<Process> processes)
{
    Machine machine = baseM1();
    machine.processes = std::move(processes);
    mac().boot(machine);
}

} // namespace

class TestProcessBridgeOnMac : public QObject {
    Q_OBJECT

private slots:
    void listsWhatHoldsMemory();
    void ranks();
    void asksNothingForNoRows();
    void skipsWhatCannotBeRead_data();
    void skipsWhatCannotBeRead();
    void namesProcessesWithoutNames();
    void countsTheProcessesOfTheSecondList();
    void survivesGarbage();
    void readsArguments_data();
    void readsArguments();
    void hasNoArgumentsWhenTheKernelRefuses();
    void readsArgumentsCutByTheKernel();
    void ranksTheMachinesWorkloads();
};

void TestProcessBridgeOnMac::listsWhatHoldsMemory()
{
    bootWith({{.pid = 0, .name = "kernel_task", .footprint = 5},
              {.pid = 30, .name = "third", .footprint = 300},
              {.pid = 10, .name = "first", .footprint = 100},
              {.pid = 20, .name = "ended", .footprint = 0},
              {.pid = 40, .name = "another user's", .footprint = 900, .inspectable = false},
              {.pid = 50, .name = "Größe", .footprint = std::uint64_t(1) << 40}});
    QCOMPARE(
        ProcessBridge::allProcesses(),
        (Records{{30, "third", 300}, {10, "first", 100}, {50, "Größe", std::uint64_t(1) << 40}}));
}

void TestProcessBridgeOnMac::ranks()
{
    bootWith({{.pid = 1, .name = "a", .footprint = 10},
              {.pid = 2, .name = "b", .footprint = 30},
              {.pid = 3, .name = "c", .footprint = 20}});
    QCOMPARE(ProcessBridge::topProcessesByMemory(2), (Records{{2, "b", 30}, {3, "c", 20}}));
    QCOMPARE(ProcessBridge::topProcessesByMemory(100).size(), 3U);
    QCOMPARE(ProcessSampler::topByRAM(1).size(), 1);
    QCOMPARE(ProcessSampler::topByRAM(1).front().id, 2);
}

void TestProcessBridgeOnMac::asksNothingForNoRows()
{
    mac().boot(baseM1());
    QVERIFY(ProcessBridge::topProcessesByMemory(0).empty());
    QVERIFY(ProcessBridge::topProcessesByMemory(-1).empty());
    QCOMPARE(faults().uses(Call::proc_listpids), 0);
}

void TestProcessBridgeOnMac::skipsWhatCannotBeRead_data()
{
    QTest::addColumn<int>("call");
    QTest::addColumn<int>("way");
    QTest::addColumn<int>("use");
    QTest::addColumn<int>("left");
    const auto row = [](const char *name, Call call, Way way, int use, int left) {
        QTest::newRow(name) << static_cast<int>(call) << static_cast<int>(way) << use << left;
    };
    row("no size of the list", Call::proc_listpids, Way::error, 1, 0);
    row("no list", Call::proc_listpids, Way::error, 2, 0);
    row("a list shorter than one process", Call::proc_listpids, Way::shortAnswer, 2, 0);
    row("a process that may not be inspected", Call::proc_pid_rusage, Way::error, 2, 2);
    row("a name that cannot be read", Call::proc_name, Way::error, 2, 3);
}

void TestProcessBridgeOnMac::skipsWhatCannotBeRead()
{
    QFETCH(int, call);
    QFETCH(int, way);
    QFETCH(int, use);
    QFETCH(int, left);
    bootWith({{.pid = 1, .name = "a", .footprint = 10},
              {.pid = 2, .name = "b", .footprint = 20},
              {.pid = 3, .name = "c", .footprint = 30}});
    faults().failOnce(static_cast<Call>(call), static_cast<Way>(way), use);
    QCOMPARE(static_cast<int>(ProcessBridge::allProcesses().size()), left);
    QCOMPARE(ProcessBridge::allProcesses().size(), 3U);
}

void TestProcessBridgeOnMac::namesProcessesWithoutNames()
{
    bootWith({{.pid = 123, .name = "", .footprint = 10}});
    QCOMPARE(ProcessBridge::allProcesses(), (Records{{123, "pid 123", 10}}));
    bootWith({{.pid = 124, .name = "named", .footprint = 10}});
    faults().failOnce(Call::proc_name, Way::error);
    QCOMPARE(ProcessBridge::allProcesses(), (Records{{124, "pid 124", 10}}));
    faults().failOnce(Call::proc_name, Way::garbage); // Not UTF-8.
    QCOMPARE(ProcessBridge::allProcesses(), (Records{{124, "pid 124", 10}}));
}

void TestProcessBridgeOnMac::countsTheProcessesOfTheSecondList()
{
    // The first answer has room for twenty more; slots that stay empty are no processes.
    bootWith({{.pid = 7, .name = "only", .footprint = 70}});
    QCOMPARE(ProcessBridge::allProcesses(), (Records{{7, "only", 70}}));
    QCOMPARE(faults().uses(Call::proc_pid_rusage), 1);
}

void TestProcessBridgeOnMac::survivesGarbage()
{
    mac().boot(maxM4());
    for (std::uint32_t seed = 0; seed < 20; ++seed) {
        faults().failRandomly(seed, 0.3);
        for (const ProcessRecord &process : ProcessBridge::topProcessesByMemory(20)) {
            QVERIFY(process.pid && *process.pid > 0);
            QVERIFY(process.memory && *process.memory > 0);
            QVERIFY(process.name && !process.name->empty());
        }
        for (const Process &process : maxM4().processes) {
            const auto record = ProcessBridge::processArgsForPID(process.pid);
            QVERIFY(!record || record->argv.size() <= 4096);
        }
    }
}

void TestProcessBridgeOnMac::readsArguments_data()
{
    QTest::addColumn<std::vector<std::uint8_t>>("arguments");
    QTest::addColumn<std::optional<ArgumentRecord>>("expected");
    using Expected = std::optional<ArgumentRecord>;
    using Texts = std::vector<std::string>;
    const auto row = [](const char *name, std::vector<std::uint8_t> arguments, Expected expected) {
        QTest::newRow(name) << std::move(arguments) << std::move(expected);
    };
    row("a server with its model", argumentBlock("/bin/serve", {"serve", "-m", "model.gguf"}),
        ArgumentRecord{"/bin/serve", {"serve", "-m", "model.gguf"}});
    row("no arguments", argumentBlock("/bin/serve", {}), ArgumentRecord{"/bin/serve", {}});
    row("4097 arguments", argumentBlock("/bin/many", Texts(4097, "x")), std::nullopt);
    row("a megabyte of one argument", argumentBlock("/a", {std::string(std::size_t(1) << 20, 'm')}),
        ArgumentRecord{"/a", {std::string(std::size_t(1) << 20, 'm')}});
}

void TestProcessBridgeOnMac::readsArguments()
{
    QFETCH(std::vector<std::uint8_t>, arguments);
    QFETCH(std::optional<ArgumentRecord>, expected);
    bootWith({{.pid = pid, .name = "process", .footprint = 1, .arguments = arguments}});
    QVERIFY(ProcessBridge::processArgsForPID(pid) == expected);
}

void TestProcessBridgeOnMac::hasNoArgumentsWhenTheKernelRefuses()
{
    bootWith({{.pid = pid, .name = "a", .footprint = 1, .arguments = argumentBlock("/a", {"a"})},
              {.pid = 501,
               .name = "another user's",
               .footprint = 1,
               .inspectable = false,
               .arguments = argumentBlock("/b", {"b"})}});
    QVERIFY(!ProcessBridge::processArgsForPID(501));
    QVERIFY(!ProcessBridge::processArgsForPID(502));
    QVERIFY(!ProcessBridge::processArgsForPID(0));
    QVERIFY(!ProcessBridge::processArgsForPID(-1));
    for (const int use : {1, 2}) { // For the size and for the bytes.
        faults().failOnce(Call::sysctl, Way::error, use);
        QVERIFY(!ProcessBridge::processArgsForPID(pid));
    }
    QVERIFY(ProcessBridge::processArgsForPID(pid));
}

void TestProcessBridgeOnMac::readsArgumentsCutByTheKernel()
{
    bootWith(
        {{.pid = pid,
          .name = "a",
          .footprint = 1,
          .arguments = argumentBlock("/bin/a", {"first", "second", "third", "fourth", "fifth"})}});
    const auto whole = ProcessBridge::processArgsForPID(pid);
    for (const int use : {1, 2}) { // The size was too small, or the bytes are fewer than announced.
        faults().failOnce(Call::sysctl, Way::shortAnswer, use);
        const auto cut = ProcessBridge::processArgsForPID(pid);
        QVERIFY(cut);
        QCOMPARE(cut->path, std::string("/bin/a"));
        QVERIFY(cut->argv.size() < whole->argv.size());
    }
}

void TestProcessBridgeOnMac::ranksTheMachinesWorkloads()
{
    mac().boot(maxM4());
    const auto top = ProcessBridge::topProcessesByMemory(2);
    QCOMPARE(top,
             (Records{{1203, "ollama", 43'000ULL << 20}, {1377, "python3.12", 18'400ULL << 20}}));
    QCOMPARE(ProcessBridge::processArgsForPID(1377)->argv.back(),
             std::string("mlx-community/Qwen2.5-32B-Instruct-4bit"));
}

QTEST_APPLESS_MAIN(TestProcessBridgeOnMac)
#include "tst_ProcessBridge_mac.moc"
