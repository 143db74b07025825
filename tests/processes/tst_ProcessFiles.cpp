#include "processes/ProcessFiles.h"

#include <QTest>

using namespace corvane;

using Bytes = std::optional<std::uint64_t>;
using Bounds = std::optional<FootprintBounds>;

Q_DECLARE_METATYPE(Bytes)
Q_DECLARE_METATYPE(Bounds)
Q_DECLARE_METATYPE(SwapLimits)

class TestProcessFiles : public QObject {
    Q_OBJECT

private slots:
    void readsSwapInUse_data();
    void readsSwapInUse();
    void readsStatm_data();
    void readsStatm();
    void takesThePageSizeOfTheMachine();
    void readsSwappedMemory_data();
    void readsSwappedMemory();
    void readsTheTimeOfTheStart_data();
    void readsTheTimeOfTheStart();
    void readsTheParent();
    void completesNames_data();
    void completesNames();
};

void TestProcessFiles::readsSwapInUse_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<quint64>("expected");
    QTest::newRow("some") << std::string("MemTotal: 9 kB\nSwapTotal:  2048 kB\nSwapFree: 1024 kB\n")
                          << quint64(1 << 20);
    QTest::newRow("none used") << std::string("SwapTotal: 2048 kB\nSwapFree: 2048 kB\n")
                               << quint64(0);
    QTest::newRow("no swap") << std::string("SwapTotal: 0 kB\nSwapFree: 0 kB\n") << quint64(0);
    QTest::newRow("more free than there is")
        << std::string("SwapTotal: 1 kB\nSwapFree: 2 kB\n") << quint64(0);
    QTest::newRow("a line is missing") << std::string("SwapTotal: 2048 kB\n") << quint64(0);
    QTest::newRow("garbage") << std::string("SwapTotal: x kB\nSwapFree: 1 kB\n") << quint64(0);
    QTest::newRow("empty") << std::string() << quint64(0);
}

void TestProcessFiles::readsSwapInUse()
{
    QFETCH(std::string, text);
    QTEST(quint64(parseSwapInUse(text)), "expected");
}

void TestProcessFiles::readsStatm_data()
{
    constexpr std::uint64_t page = 4096;
    const SwapLimits noSwap;
    const SwapLimits someSwap{.inUse = 5 * page};
    const SwapLimits muchSwap{.inUse = 1000 * page};
    const auto bounds = [](std::uint64_t least, std::uint64_t most) {
        return Bounds({.pid = 7, .least = least * page, .most = most * page});
    };
    QTest::addColumn<std::string>("text");
    QTest::addColumn<SwapLimits>("swap");
    QTest::addColumn<Bounds>("expected");

    QTest::newRow("resident without shared")
        << std::string("100 40 15 1 0 20 0\n") << noSwap << bounds(25, 25);
    QTest::newRow("no last line end")
        << std::string("100 40 15 1 0 20 0") << noSwap << bounds(25, 25);
    QTest::newRow("three counts suffice") << std::string("100 40 15") << noSwap << bounds(25, 25);
    QTest::newRow("at most the swap in use is the process's")
        << std::string("100 40 15 1 0 20 0\n") << someSwap << bounds(25, 30);
    QTest::newRow("at most the pages that are not resident are swapped")
        << std::string("100 40 15 1 0 20 0\n") << muchSwap << bounds(25, 85);
    QTest::newRow("merged pages: one in swap may stand for many")
        << std::string("100 40 15 1 0 20 0\n") << SwapLimits{.inUse = page, .pagesMerged = true}
        << bounds(25, 85);
    QTest::newRow("merged pages without swap")
        << std::string("100 40 15 1 0 20 0\n") << SwapLimits{.inUse = 0, .pagesMerged = true}
        << bounds(25, 25);
    QTest::newRow("all of it swapped out")
        << std::string("100 15 15\n") << someSwap << bounds(0, 5);
    QTest::newRow("more resident than address space, since the counters are imprecise")
        << std::string("30 40 15\n") << someSwap << bounds(25, 25);
    QTest::newRow("a zombie or kernel thread")
        << std::string("0 0 0 0 0 0 0\n") << someSwap << Bounds();
    QTest::newRow("no memory of its own") << std::string("100 15 15\n") << noSwap << Bounds();
    QTest::newRow("more shared than resident") << std::string("100 15 16\n") << noSwap << Bounds();
    QTest::newRow("cut") << std::string("100 40") << noSwap << Bounds();
    QTest::newRow("empty") << std::string() << noSwap << Bounds();
    QTest::newRow("negative") << std::string("100 -40 15\n") << noSwap << Bounds();
    QTest::newRow("letters") << std::string("100 4x 15\n") << noSwap << Bounds();
    QTest::newRow("more than any machine has")
        << std::string("100 274877906945 0\n") << noSwap << Bounds();
    QTest::newRow("an implausible address space does not matter")
        << std::string("18446744073709551615 40 15\n") << someSwap << bounds(25, 30);
}

void TestProcessFiles::readsStatm()
{
    QFETCH(std::string, text);
    QFETCH(SwapLimits, swap);
    QTEST(parseStatm(7, text, 4096, swap), "expected");
}

void TestProcessFiles::takesThePageSizeOfTheMachine()
{
    QCOMPARE(parseStatm(1, "9 3 1", 16384, {})->least, std::uint64_t(32768));
    QCOMPARE(parseStatm(1, "9 3 1", 65536, {})->least, std::uint64_t(131072));
}

void TestProcessFiles::readsSwappedMemory_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<Bytes>("expected");
    QTest::newRow("some") << std::string("Name:\tx\nVmSwap:\t    2048 kB\nThreads:\t1\n")
                          << Bytes(2 << 20);
    QTest::newRow("none") << std::string("VmSwap:\t       0 kB\n") << Bytes(0);
    QTest::newRow("a name cannot imitate the line, since its newline is escaped")
        << std::string("Name:\tx\\nVmSwap:\t9 kB\nVmSwap:\t4 kB\n") << Bytes(4096);
    QTest::newRow("a zombie has no such line")
        << std::string("Name:\tx\nState:\tZ (zombie)\n") << Bytes();
    QTest::newRow("another line that begins so") << std::string("VmSwapped: 1 kB\n") << Bytes();
    QTest::newRow("another unit") << std::string("VmSwap: 1 MB\n") << Bytes();
    QTest::newRow("cut") << std::string("VmSwap:") << Bytes();
    QTest::newRow("empty") << std::string() << Bytes();
}

void TestProcessFiles::readsSwappedMemory()
{
    QFETCH(std::string, text);
    QTEST(parseSwapped(text), "expected");
}

void TestProcessFiles::readsTheTimeOfTheStart_data()
{
    using Expected = std::optional<quint64>;
    QTest::addColumn<QByteArray>("stat");
    QTest::addColumn<Expected>("expected");
    const QByteArray fields =
        " S 29918 29918 27721 0 -1 4194304 113 0 0 0 0 0 0 0 20 0 1 0 390663 2990080 407";
    QTest::newRow("as the kernel writes it")
        << "30014 (deleted-exe-wit)" + fields << Expected(390663);
    QTest::newRow("a name with blanks and parentheses")
        << "7 (a) R 1 (b))" + fields << Expected(390663);
    QTest::newRow("a name with a line end") << "7 (a\nb)" + fields << Expected(390663);
    QTest::newRow("cut before it") << QByteArray("7 (a) S 29918 29918 27721 0 -1") << Expected();
    QTest::newRow("cut in it") << "7 (a)" + fields.first(fields.indexOf(" 390663")) << Expected();
    QTest::newRow("no name") << QByteArray("7 S 1 2 3") << Expected();
    QTest::newRow("no number there") << "7 (a)" + QByteArray(" x").repeated(25) << Expected();
    QTest::newRow("nothing") << QByteArray() << Expected();
}

void TestProcessFiles::readsTheTimeOfTheStart()
{
    QFETCH(QByteArray, stat);
    const auto time = parseStartTime({stat.constData(), static_cast<std::size_t>(stat.size())});
    QTEST(time ? std::optional<quint64>(*time) : std::nullopt, "expected");
}

void TestProcessFiles::readsTheParent()
{
    using Expected = std::optional<std::int32_t>;
    QCOMPARE(parseParent("7 (a) S 29918 29918 27721 0"), Expected(29918));
    QCOMPARE(parseParent("7 (a (b) c) R 1 2"), Expected(1));
    QCOMPARE(parseParent("7 (a) S 0 0"), Expected(0));
    QCOMPARE(parseParent("7 (a) S 99999999999"), Expected());
    QCOMPARE(parseParent("7 (a) S"), Expected());
    QCOMPARE(parseParent("7 (a) S -1"), Expected());
    QCOMPARE(parseParent(""), Expected());
}

void TestProcessFiles::completesNames_data()
{
    QTest::addColumn<std::string>("comm");
    QTest::addColumn<std::string>("executable");
    QTest::addColumn<std::string>("expected");
    QTest::newRow("short") << std::string("ollama\n") << std::string("/usr/bin/ollama")
                           << std::string("ollama");
    QTest::newRow("short, of another executable")
        << std::string("vllm\n") << std::string("/usr/bin/python3.11") << std::string("vllm");
    QTest::newRow("a short one is never completed")
        << std::string("llama-server\n") << std::string("/usr/bin/llama-server-cuda")
        << std::string("llama-server");
    QTest::newRow("cut") << std::string("koboldcpp-linux\n")
                         << std::string("/opt/koboldcpp-linux-x64-cuda1150")
                         << std::string("koboldcpp-linux-x64-cuda1150");
    QTest::newRow("cut, the file replaced since")
        << std::string("koboldcpp-linux\n") << std::string("/opt/koboldcpp-linux-x64 (deleted)")
        << std::string("koboldcpp-linux-x64");
    QTest::newRow("of 15 bytes, not cut")
        << std::string("huggingface-cli\n") << std::string("/usr/bin/huggingface-cli")
        << std::string("huggingface-cli");
    QTest::newRow("cut, of another executable")
        << std::string("VLLM::EngineCor\n") << std::string("/usr/bin/python3.12")
        << std::string("VLLM::EngineCor");
    QTest::newRow("cut, the executable unreadable")
        << std::string("koboldcpp-linux\n") << std::string() << std::string("koboldcpp-linux");
    QTest::newRow("cut within a character")
        << std::string("modell-f\xc3\xbcr-\xc3\xa4\xc3\n") << std::string("/x/modell-für-äöü")
        << std::string("modell-für-äöü");
    QTest::newRow("a name may hold newlines")
        << std::string("a\nb\n\n") << std::string() << std::string("a\nb\n");
    QTest::newRow("empty") << std::string("\n") << std::string() << std::string();
}

void TestProcessFiles::completesNames()
{
    QFETCH(std::string, comm);
    QFETCH(std::string, executable);
    QTEST(std::string(completedName(parseProcessName(comm), executable)), "expected");
}

QTEST_APPLESS_MAIN(TestProcessFiles)
#include "tst_ProcessFiles.moc"
