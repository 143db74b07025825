#include "processes/ProcTree.h"
#include "processes/ProcessBridge.h"

#include <QTest>

#include <unistd.h>

using namespace corvane;
using namespace corvane::test;

using Records = std::vector<ProcessRecord>;

namespace {

constexpr std::uint64_t MiB = 1 << 20;

FakeProcess named(const QByteArray &comm, std::uint64_t own)
{
    return {.own = own, .shared = 4 * MiB, .room = 50 * MiB, .swapped = 0, .comm = comm};
}

std::string nulText(std::initializer_list<std::string> arguments)
{
    std::string text;
    for (const std::string &argument : arguments)
        text += argument + '\0';
    return text;
}

} // namespace

Q_DECLARE_METATYPE(std::optional<ArgumentRecord>)
Q_DECLARE_METATYPE(FakeProcess)

class TestProcessBridge : public QObject {
    Q_OBJECT

private slots:
    void listsInTheKernelsOrder();
    void skipsWhatHasNoFootprint_data();
    void skipsWhatHasNoFootprint();
    void namesProcesses_data();
    void namesProcesses();
    void ranks_data();
    void ranks();
    void namesOnlyWhatIsWanted();
    void findsNothingWhereNothingIs();
    void addsSwappedMemory();
    void readsStatusOnlyWhileSwapIsInUse();
    void countsMergedPagesInSwap();
    void skipsAProcessThatEndsBeforeItsStatusIsRead();
    void readsArguments_data();
    void readsArguments();
    void refusesNumbersThatAreNoProcess();
    void readsItself();
};

void TestProcessBridge::listsInTheKernelsOrder()
{
    ProcTree tree;
    tree.add(300, named("c\n", MiB));
    tree.add(7, named("a\n", 3 * MiB));
    tree.add(41, named("b\n", 2 * MiB));
    QCOMPARE(ProcessBridge::allProcesses(tree.source()),
             (Records{{7, "a", 3 * MiB}, {41, "b", 2 * MiB}, {300, "c", MiB}}));
}

void TestProcessBridge::skipsWhatHasNoFootprint_data()
{
    QTest::addColumn<FakeProcess>("process");
    FakeProcess zombie = named("gone\n", 0);
    zombie.statm = "0 0 0 0 0 0 0\n";
    zombie.cmdline = "";
    QTest::newRow("a zombie") << zombie;
    FakeProcess kernelThread = named("kworker/u8:0-events_unbound\n", 0);
    kernelThread.statm = "0 0 0 0 0 0 0\n";
    QTest::newRow("a kernel thread") << kernelThread;
    FakeProcess ended = named("x\n", MiB);
    ended.statm = "";
    QTest::newRow("one whose file reads empty") << ended;
    FakeProcess garbage = named("x\n", MiB);
    garbage.statm = "resident\n";
    QTest::newRow("one whose file holds garbage") << garbage;
}

void TestProcessBridge::skipsWhatHasNoFootprint()
{
    QFETCH(FakeProcess, process);
    ProcTree tree;
    tree.add(10, named("stays\n", MiB));
    tree.add(11, process);
    tree.add(12, named("ends\n", MiB)); // Ended between listing and reading, or hidden (hidepid=1).
    tree.remove(12, "statm");
    tree.addFolder("13");       // Listed, but nothing in it.
    tree.addFolder("14/statm"); // Not a file.
    tree.addFolder("0");
    tree.addFolder("99999999999");
    tree.addFolder("12x");
    tree.addFolder("sys");
    QCOMPARE(ProcessBridge::allProcesses(tree.source()), (Records{{10, "stays", MiB}}));
    QCOMPARE(ProcessBridge::topProcessesByMemory(5, {}, tree.source()),
             (Records{{10, "stays", MiB}}));
}

void TestProcessBridge::namesProcesses_data()
{
    QTest::addColumn<FakeProcess>("process");
    QTest::addColumn<std::string>("expected");
    const auto row = [](const char *title, std::optional<QByteArray> comm,
                        std::optional<QByteArray> exe, const std::string &expected) {
        FakeProcess process = named("", MiB);
        process.comm = std::move(comm);
        process.exe = std::move(exe);
        QTest::newRow(title) << process << expected;
    };
    row("the short name", "ollama\n", "/usr/bin/ollama", "ollama");
    row("empty", "\n", {}, "pid 123");
    row("unreadable", {}, {}, "pid 123");
    row("not UTF-8", "caf\xe9\n", {}, "pid 123");
    row("cut, completed", "koboldcpp-linux\n", "/opt/koboldcpp-linux-x64", "koboldcpp-linux-x64");
    row("cut within a character, the executable not to be read", "modell-f\xc3\xbcr-\xc3\xa4\xc3\n",
        {}, "pid 123");
}

void TestProcessBridge::namesProcesses()
{
    QFETCH(FakeProcess, process);
    QFETCH(std::string, expected);
    ProcTree tree;
    tree.add(123, process);
    QCOMPARE(ProcessBridge::allProcesses(tree.source()), (Records{{123, expected, MiB}}));
    QCOMPARE(ProcessBridge::topProcessesByMemory(1, {}, tree.source()),
             (Records{{123, expected, MiB}}));
}

void TestProcessBridge::ranks_data()
{
    QTest::addColumn<int>("limit");
    QTest::addColumn<QList<int>>("expected");
    QTest::newRow("two of three") << 2 << QList<int>{9, 2};
    QTest::newRow("the largest limit") << INT_MAX << QList<int>{9, 2, 5};
    QTest::newRow("none") << 0 << QList<int>{};
    QTest::newRow("a negative limit") << -3 << QList<int>{};
    QTest::newRow("the lowest limit") << INT_MIN << QList<int>{};
}

void TestProcessBridge::ranks()
{
    QFETCH(int, limit);
    ProcTree tree;
    tree.add(2, named("b\n", 2 * MiB));
    tree.add(5, named("c\n", MiB));
    tree.add(9, named("a\n", 300 * MiB));
    QList<int> pids;
    for (const ProcessRecord &record :
         ProcessBridge::topProcessesByMemory(limit, {}, tree.source()))
        pids.append(record.pid.value());
    QTEST(pids, "expected");
}

void TestProcessBridge::namesOnlyWhatIsWanted()
{
    ProcTree tree;
    tree.add(1, named("a\n", 9 * MiB));
    tree.add(2, named("b\n", 8 * MiB));
    tree.add(3, named("c\n", 7 * MiB));
    const auto ranking = [&tree](const NamesWanted &names) {
        return ProcessBridge::topProcessesByMemory(3, names, tree.source());
    };
    QCOMPARE(ranking({.first = 1, .fromMemory = 8 * MiB}),
             (Records{{1, "a", 9 * MiB}, {2, "b", 8 * MiB}, {3, std::nullopt, 7 * MiB}}));
    QCOMPARE(ranking({.first = 2, .fromMemory = 9 * MiB}),
             (Records{{1, "a", 9 * MiB}, {2, "b", 8 * MiB}, {3, std::nullopt, 7 * MiB}}));
}

void TestProcessBridge::findsNothingWhereNothingIs()
{
    const ProcessSource nowhere = linuxProcesses("/nowhere");
    QCOMPARE(ProcessBridge::topProcessesByMemory(5, {}, nowhere), Records());
    QCOMPARE(ProcessBridge::allProcesses(nowhere), Records());
    QVERIFY(!ProcessBridge::processArgsForPID(7, nowhere));
}

void TestProcessBridge::addsSwappedMemory()
{
    ProcTree tree;
    tree.setSwap(500 * MiB, 460 * MiB);
    FakeProcess swapped = named("sleeper\n", MiB);
    swapped.swapped = 40 * MiB;
    tree.add(1, swapped);
    tree.add(2, named("awake\n", 30 * MiB));
    FakeProcess wholly = named("away\n", 0);
    wholly.swapped = 35 * MiB;
    tree.add(3, wholly);
    QCOMPARE(ProcessBridge::topProcessesByMemory(5, {}, tree.source()),
             (Records{{1, "sleeper", 41 * MiB}, {3, "away", 35 * MiB}, {2, "awake", 30 * MiB}}));
    QCOMPARE(ProcessBridge::allProcesses(tree.source()),
             (Records{{1, "sleeper", 41 * MiB}, {2, "awake", 30 * MiB}, {3, "away", 35 * MiB}}));
}

void TestProcessBridge::readsStatusOnlyWhileSwapIsInUse()
{
    ProcTree tree;
    FakeProcess process = named("a\n", MiB);
    process.swapped = 40 * MiB; // Would count if it were read.
    tree.add(1, process);
    const Records withoutSwap{{1, "a", MiB}};
    QCOMPARE(ProcessBridge::allProcesses(tree.source()), withoutSwap); // No meminfo at all.
    tree.setSwap(0, 0);
    QCOMPARE(ProcessBridge::allProcesses(tree.source()), withoutSwap);
    tree.setSwap(500 * MiB, 500 * MiB);
    QCOMPARE(ProcessBridge::allProcesses(tree.source()), withoutSwap);
    tree.setSwap(500 * MiB, 400 * MiB);
    QCOMPARE(ProcessBridge::allProcesses(tree.source()), (Records{{1, "a", 41 * MiB}}));
}

void TestProcessBridge::countsMergedPagesInSwap()
{
    // One page of swap may hold what many pages of a process share.
    ProcTree tree;
    tree.setSwap(500 * MiB, 499 * MiB);
    tree.add(1, named("plain\n", 20 * MiB));
    FakeProcess merged = named("merged\n", MiB);
    merged.swapped = 40 * MiB;
    tree.add(2, merged);
    tree.setMergingScans("12\n");
    QCOMPARE(ProcessBridge::topProcessesByMemory(1, {}, tree.source()),
             (Records{{2, "merged", 41 * MiB}}));
}

void TestProcessBridge::skipsAProcessThatEndsBeforeItsStatusIsRead()
{
    ProcTree tree;
    tree.setSwap(500 * MiB, 400 * MiB);
    tree.add(1, named("stays\n", MiB));
    tree.add(2, named("ends\n", 2 * MiB));
    tree.remove(2, "status");
    FakeProcess zombie = named("dies\n", 3 * MiB);
    zombie.status = "Name:\tdies\nState:\tZ (zombie)\n";
    tree.add(3, zombie);
    QCOMPARE(ProcessBridge::topProcessesByMemory(5, {}, tree.source()),
             (Records{{1, "stays", MiB}}));
}

void TestProcessBridge::readsArguments_data()
{
    using Expected = std::optional<ArgumentRecord>;
    QTest::addColumn<FakeProcess>("process");
    QTest::addColumn<Expected>("expected");
    const auto row = [](const char *title, std::optional<std::string> cmdline,
                        std::optional<QByteArray> exe, const Expected &expected) {
        FakeProcess process = named("x\n", MiB);
        if (cmdline)
            process.cmdline = QByteArray::fromStdString(*cmdline);
        process.exe = std::move(exe);
        QTest::newRow(title) << process << expected;
    };
    row("arguments and executable", nulText({"ollama", "run", "llama3"}), "/usr/bin/ollama",
        Expected({"/usr/bin/ollama", {"ollama", "run", "llama3"}}));
    row("of another user: the executable stays unknown", nulText({"ollama", "serve"}), {},
        Expected({"", {"ollama", "serve"}}));
    row("the executable was replaced", nulText({"a"}), "/opt/a (deleted)",
        Expected({"/opt/a", {"a"}}));
    row("the executable is not UTF-8", nulText({"a"}), "/opt/\xff", Expected({"", {"a"}}));
    row("an empty command line", "", "/usr/bin/a", Expected({"/usr/bin/a", {}}));
    row("a zombie or kernel thread", "", {}, Expected());
    row("ended", {}, {}, Expected());
    std::string many;
    for (int i = 0; i < 4097; ++i)
        many += nulText({"x"});
    row("4097 arguments count as none", many, "/usr/bin/a", Expected());
    const std::string large(200 << 10, 'y');
    row("200 KiB of arguments", nulText({"a", large, "b"}), {}, Expected({"", {"a", large, "b"}}));
    row("an argument in which the first 256 KiB end is left out with all that follow",
        nulText({"a", large, large, "b"}), {}, Expected({"", {"a", large}}));
    row("256 KiB to the byte", nulText({"a", std::string((256 << 10) - 3, 'y')}), {},
        Expected({"", {"a", std::string((256 << 10) - 3, 'y')}}));
    row("256 KiB and a byte", nulText({"a", std::string((256 << 10) - 2, 'y')}), {},
        Expected({"", {"a"}}));
    row("one argument of megabytes", std::string(4 << 20, 'y'), "/usr/bin/a",
        Expected({"/usr/bin/a", {}}));
}

void TestProcessBridge::readsArguments()
{
    QFETCH(FakeProcess, process);
    QFETCH(std::optional<ArgumentRecord>, expected);
    ProcTree tree;
    tree.add(77, process);
    QVERIFY(ProcessBridge::processArgsForPID(77, tree.source()) == expected);
}

void TestProcessBridge::refusesNumbersThatAreNoProcess()
{
    QVERIFY(!ProcessBridge::processArgsForPID(0));
    QVERIFY(!ProcessBridge::processArgsForPID(-1));
    QVERIFY(!ProcessBridge::processArgsForPID(INT_MIN));
}

void TestProcessBridge::readsItself()
{
    const auto arguments = ProcessBridge::processArgsForPID(getpid());
    QVERIFY(arguments);
    QCOMPARE(QString::fromStdString(arguments->path), QCoreApplication::applicationFilePath());
    QCOMPARE(QString::fromStdString(arguments->argv.at(0)), QCoreApplication::arguments().at(0));

    const auto all = ProcessBridge::allProcesses();
    const auto own =
        std::ranges::find(all, std::optional<std::int32_t>(getpid()), &ProcessRecord::pid);
    QVERIFY(own != all.end());
    QCOMPARE(own->name, std::optional<std::string>("tst_ProcessBridge"));
    QVERIFY(own->memory > MiB);
}

QTEST_GUILESS_MAIN(TestProcessBridge)
#include "tst_ProcessBridge.moc"
