#include "processes/ArgumentBlock.h"

#include <QTest>

#include <cstdint>
#include <cstring>

using namespace corvane;

namespace {

using Arguments = std::vector<std::string>;

/// A block as the kernel lays it out; `rest` is all that follows the count.
std::string block(std::int32_t count, const std::string &rest)
{
    std::string bytes(sizeof(count), '\0');
    std::memcpy(bytes.data(), &count, sizeof(count));
    return bytes + rest;
}

std::string repeated(int count, const std::string &text)
{
    std::string all;
    for (int i = 0; i < count; ++i)
        all += text;
    return all;
}

/// A text with its NULs.
template <std::size_t size>
std::string bytes(const char (&text)[size])
{
    return std::string(text, size - 1);
}

} // namespace

Q_DECLARE_METATYPE(std::optional<ArgumentRecord>)
Q_DECLARE_METATYPE(std::optional<Arguments>)

class TestArgumentBlock : public QObject {
    Q_OBJECT

private slots:
    void readsBlocks_data();
    void readsBlocks();
    void readsCommandLines_data();
    void readsCommandLines();
    void readsAMegabyte();
};

void TestArgumentBlock::readsBlocks_data()
{
    using Expected = std::optional<ArgumentRecord>;
    QTest::addColumn<std::string>("text");
    QTest::addColumn<Expected>("expected");

    QTest::newRow("path, padding, arguments; the environment is not read")
        << block(2, bytes("/bin/ls\0\0\0\0ls\0-l\0HOME=/root\0"))
        << Expected({"/bin/ls", {"ls", "-l"}});
    QTest::newRow("no padding") << block(1, bytes("/bin/ls\0ls\0"))
                                << Expected({"/bin/ls", {"ls"}});
    QTest::newRow("no bytes") << std::string() << Expected();
    QTest::newRow("shorter than the count") << std::string(3, '\0') << Expected();
    QTest::newRow("the count alone") << block(3, "") << Expected({"", {}});
    QTest::newRow("a negative count") << block(-1, bytes("/bin/ls\0ls\0")) << Expected();
    QTest::newRow("the lowest count") << block(INT32_MIN, bytes("/bin/ls\0ls\0")) << Expected();
    QTest::newRow("no arguments: an empty list and the path")
        << block(0, bytes("/bin/ls\0\0HOME=/root\0")) << Expected({"/bin/ls", {}});
    QTest::newRow("4096 arguments are read")
        << block(4096, bytes("/a\0") + repeated(4096, bytes("x\0")))
        << Expected({"/a", Arguments(4096, "x")});
    QTest::newRow("4097 arguments are refused")
        << block(4097, bytes("/a\0") + repeated(4097, bytes("x\0"))) << Expected();
    QTest::newRow("a block that ends early gives fewer")
        << block(5, bytes("/bin/ls\0ls\0-l\0")) << Expected({"/bin/ls", {"ls", "-l"}});
    QTest::newRow("the last argument may lack its NUL")
        << block(2, bytes("/bin/ls\0ls\0-l")) << Expected({"/bin/ls", {"ls", "-l"}});
    QTest::newRow("a path without an end") << block(1, "/bin/ls") << Expected({"/bin/ls", {}});
    QTest::newRow("a path that is not UTF-8 reads as empty")
        << block(1, bytes("/bin/\xff\0ls\0")) << Expected({"", {"ls"}});
    QTest::newRow("an argument that is not UTF-8 is skipped, later ones move up")
        << block(3, bytes("/bin/ls\0ls\0\xc3(\0-l\0HOME=/\0"))
        << Expected({"/bin/ls", {"ls", "-l"}});
    QTest::newRow("an empty first argument is skipped as padding")
        << block(2, bytes("/bin/ls\0\0-l\0HOME=/\0")) << Expected({"/bin/ls", {"-l", "HOME=/"}});
    QTest::newRow("an empty argument in the middle counts")
        << block(3, bytes("/bin/ls\0ls\0\0-l\0")) << Expected({"/bin/ls", {"ls", "", "-l"}});
    QTest::newRow("an empty path") << block(1, bytes("\0ls\0")) << Expected({"", {"ls"}});
    QTest::newRow("only NULs") << block(2, std::string(16, '\0')) << Expected({"", {}});
    QTest::newRow("newlines and control characters stay")
        << block(2, bytes("/a\0a\nb\0\x01\x1b[0m\0")) << Expected({"/a", {"a\nb", "\x01\x1b[0m"}});
}

void TestArgumentBlock::readsBlocks()
{
    QFETCH(std::string, text);
    QTEST(parseArgumentBlock(text), "expected");
}

void TestArgumentBlock::readsCommandLines_data()
{
    using Expected = std::optional<Arguments>;
    QTest::addColumn<std::string>("text");
    QTest::addColumn<Expected>("expected");

    QTest::newRow("arguments, each with its NUL")
        << bytes("ls\0-l\0/tmp\0") << Expected({"ls", "-l", "/tmp"});
    QTest::newRow("the last one may lack it") << bytes("ls\0-l") << Expected({"ls", "-l"});
    QTest::newRow("empty, as of a zombie or kernel thread")
        << std::string() << Expected(Arguments());
    QTest::newRow("empty arguments count")
        << bytes("ls\0\0-l\0\0") << Expected({"ls", "", "-l", ""});
    QTest::newRow("a title in their place, without a NUL")
        << bytes("postgres: checkpointer") << Expected({"postgres: checkpointer"});
    QTest::newRow("a title with a run of NULs behind it")
        << bytes("postgres: checkpointer\0\0\0\0\0") << Expected({"postgres: checkpointer"});
    QTest::newRow("a title with more NULs than a process may have arguments")
        << "title" + std::string(5000, '\0') << Expected({"title"});
    QTest::newRow("4096 arguments are read")
        << repeated(4096, bytes("x\0")) << Expected(Arguments(4096, "x"));
    QTest::newRow("4096 arguments without the last NUL")
        << repeated(4095, bytes("x\0")) + "x" << Expected(Arguments(4096, "x"));
    QTest::newRow("4097 arguments are refused") << repeated(4097, bytes("x\0")) << Expected();
    QTest::newRow("4097 arguments without the last NUL")
        << repeated(4096, bytes("x\0")) + "x" << Expected();
    QTest::newRow("an argument that is not UTF-8 is skipped, later ones move up")
        << bytes("ls\0\xed\xa0\x80\0-l\0") << Expected({"ls", "-l"});
    QTest::newRow("newlines and control characters stay")
        << bytes("a\nb\0\x01\x1b[0m\0") << Expected({"a\nb", "\x01\x1b[0m"});
    QTest::newRow("only NULs are one empty argument") << std::string(3, '\0') << Expected({""});
}

void TestArgumentBlock::readsCommandLines()
{
    QFETCH(std::string, text);
    QTEST(parseCommandLine(text), "expected");
}

void TestArgumentBlock::readsAMegabyte()
{
    const std::string large(1 << 20, 'x');
    const auto record = parseArgumentBlock(block(2, bytes("/a\0a\0") + large + '\0'));
    QVERIFY(record && record->argv == Arguments({"a", large}));
    const auto argv = parseCommandLine(bytes("a\0") + large + '\0');
    QVERIFY(argv && *argv == Arguments({"a", large}));
}

QTEST_APPLESS_MAIN(TestArgumentBlock)
#include "tst_ArgumentBlock.moc"
