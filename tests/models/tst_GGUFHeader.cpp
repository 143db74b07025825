#include "models/GGUFHeader.h"
#include "models/GGUFText.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;

using Text = std::optional<std::string>;
using Found = std::optional<GGUFHeader>;

class TestGGUFHeader : public QObject {
    Q_OBJECT

private slots:
    void readsWhatStandsBeforeTheTokenizer();
    void readsBothVersionsAndNumbersOfBothSizes();
    void passesOverValuesOfEveryType();
    void refusesOtherFiles_data();
    void refusesOtherFiles();
    void keepsWhatWasFoundBeforeDamage_data();
    void keepsWhatWasFoundBeforeDamage();
    void leavesOutTextsThatAreNone_data();
    void leavesOutTextsThatAreNone();
    void survivesEveryCut();
    void completesTheNameWithTheSize_data();
    void completesTheNameWithTheSize();
};

namespace {

std::string qwen()
{
    return GGUFText()
        .text("general.architecture", "qwen3")
        .text("general.name", "Qwen3 8B Instruct")
        .text("general.size_label", "8B")
        .u32("qwen3.context_length", 40960)
        .u32("general.file_type", 15)
        .pair("tokenizer.ggml.tokens", 9,
              GGUFText::number(8, 4) + GGUFText::number(150'000, 8) + "cut here")
        .bytes();
}

const GGUFHeader qwenHeader{
    .name = "Qwen3 8B Instruct", .sizeLabel = "8B", .fileType = 15, .contextLength = 40960};

} // namespace

void TestGGUFHeader::readsWhatStandsBeforeTheTokenizer()
{
    QVERIFY(parseGGUFHeader(qwen()) == Found(qwenHeader));
    QVERIFY(parseGGUFHeader(GGUFText().bytes()) == Found(GGUFHeader()));
}

void TestGGUFHeader::readsBothVersionsAndNumbersOfBothSizes()
{
    for (const std::uint32_t version : {2, 3}) {
        const auto header = parseGGUFHeader(GGUFText(version)
                                                .u64("llama.context_length", 8192)
                                                .u64("general.file_type", 7)
                                                .bytes());
        QVERIFY(header == Found(GGUFHeader{.fileType = 7, .contextLength = 8192}));
    }
}

void TestGGUFHeader::passesOverValuesOfEveryType()
{
    GGUFText file;
    const int sizes[] = {1, 1, 2, 2, 4, 4, 4, 1, -1, -1, 8, 8, 8};
    for (std::uint32_t type = 0; type < std::size(sizes); ++type) {
        if (sizes[type] > 0)
            file.pair("x", type, std::string(static_cast<std::size_t>(sizes[type]), 'v'));
    }
    const auto number = GGUFText::number;
    file.pair("numbers", 9, number(4, 4) + number(3, 8) + std::string(12, 'n'));
    file.pair("texts", 9, number(8, 4) + number(2, 8) + number(1, 8) + "a" + number(2, 8) + "bc");
    file.pair("lists", 9, number(9, 4) + number(1, 8) + number(0, 4) + number(2, 8) + "uu");
    file.pair("nothing", 9, number(8, 4) + number(0, 8));
    QVERIFY(parseGGUFHeader(file.text("general.name", "Behind").bytes())
            == Found(GGUFHeader{.name = "Behind"}));
}

void TestGGUFHeader::refusesOtherFiles_data()
{
    QTest::addColumn<std::string>("bytes");
    QTest::newRow("empty") << std::string();
    QTest::newRow("zeros") << std::string(65536, '\0');
    QTest::newRow("another format") << std::string("PK\3\4 and much more of it here");
    QTest::newRow("the mark alone") << std::string("GGUF");
    QTest::newRow("a version that nobody writes any more") << GGUFText(1).bytes();
    QTest::newRow("a version to come") << GGUFText(4).bytes();
    QTest::newRow("big-endian") << GGUFText(0x03000000).bytes();
}

void TestGGUFHeader::refusesOtherFiles()
{
    QFETCH(std::string, bytes);
    QVERIFY(!parseGGUFHeader(bytes));
}

void TestGGUFHeader::keepsWhatWasFoundBeforeDamage_data()
{
    QTest::addColumn<std::string>("bytes");
    const auto row = [](const char *name, const GGUFText &file, std::uint64_t pairs = 9) {
        QTest::newRow(name) << file.bytes(pairs);
    };
    const auto number = GGUFText::number;
    GGUFText named;
    named.text("general.name", "a");
    const auto with = [&named](std::uint32_t type, const std::string &value) {
        return GGUFText(named).pair("x", type, value);
    };
    row("more pairs than there are", named, ~std::uint64_t(0));
    row("a type that does not exist", with(13, "????").text("general.name", "b"));
    row("the largest type", with(0xffffffff, "????").text("general.name", "b"));
    row("a text as long as any number can be", with(8, number(~std::uint64_t(0), 8)));
    row("a list as long as any number can be",
        with(9, number(10, 4) + number(~std::uint64_t(0), 8)));
    row("a list whose bytes overflow", with(9, number(10, 4) + number(std::uint64_t(1) << 61, 8)));
    row("a list of lists without end",
        with(9,
             number(9, 4) + number(1, 8) + number(9, 4) + number(1, 8) + number(9, 4) + number(1, 8)
                 + number(9, 4) + number(1, 8) + number(9, 4) + number(1, 8)));
    row("a list of an unknown type", with(9, number(99, 4) + number(1, 8)));
    row("very many empty texts",
        with(9, number(8, 4) + number(1'000'000, 8) + std::string(60'000, '\0')));
}

void TestGGUFHeader::keepsWhatWasFoundBeforeDamage()
{
    QFETCH(std::string, bytes);
    QVERIFY(parseGGUFHeader(bytes) == Found(GGUFHeader{.name = "a"}));
}

void TestGGUFHeader::leavesOutTextsThatAreNone_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<bool>("kept");
    QTest::newRow("a name") << std::string("Qwen3 \xc3\xa4") << true;
    QTest::newRow("empty") << std::string() << false;
    QTest::newRow("blanks") << std::string("  \t") << false;
    QTest::newRow("not UTF-8") << std::string("Qwen\xff") << false;
    QTest::newRow("as long as it may be") << std::string(512, 'x') << true;
    QTest::newRow("too long") << std::string(513, 'x') << false;
}

void TestGGUFHeader::leavesOutTextsThatAreNone()
{
    QFETCH(std::string, text);
    QFETCH(bool, kept);
    const auto header = parseGGUFHeader(GGUFText().text("general.name", text).bytes());
    QVERIFY(header && header->name == (kept ? Text(text) : Text()));
}

void TestGGUFHeader::survivesEveryCut()
{
    const std::string whole = qwen();
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const auto header = parseGGUFHeader(std::string_view(whole).substr(0, length));
        QCOMPARE(header.has_value(), length >= 24);
        QVERIFY(!header || !header->name || header->name == qwenHeader.name);
    }
}

void TestGGUFHeader::completesTheNameWithTheSize_data()
{
    QTest::addColumn<Text>("name");
    QTest::addColumn<Text>("size");
    QTest::addColumn<Text>("expected");
    QTest::newRow("both") << Text("Qwen3 Instruct") << Text("8B") << Text("Qwen3 Instruct 8B");
    QTest::newRow("the size in the name")
        << Text("Qwen3-8b-it") << Text("8B") << Text("Qwen3-8b-it");
    QTest::newRow("no size") << Text("Qwen3") << Text() << Text("Qwen3");
    QTest::newRow("no name") << Text() << Text("8B") << Text();
}

void TestGGUFHeader::completesTheNameWithTheSize()
{
    QFETCH(Text, name);
    QFETCH(Text, size);
    QTEST(nameOf({.name = name, .sizeLabel = size}), "expected");
}

QTEST_APPLESS_MAIN(TestGGUFHeader)
#include "tst_GGUFHeader.moc"
