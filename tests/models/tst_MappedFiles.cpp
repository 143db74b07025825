#include "models/MappedFiles.h"

#include <QTest>

using namespace corvane;

using Files = std::vector<MappedFile>;

class TestMappedFiles : public QObject {
    Q_OBJECT

private slots:
    void readsMaps_data();
    void readsMaps();
    void knowsModelFiles_data();
    void knowsModelFiles();
};

Q_DECLARE_METATYPE(Files)

void TestMappedFiles::readsMaps_data()
{
    QTest::addColumn<std::string>("maps");
    QTest::addColumn<Files>("expected");
    const auto row = [](const char *name, const std::string &maps, const Files &expected) {
        QTest::newRow(name) << maps << expected;
    };
    row("among libraries and memory",
        "55a0e5c00000-55a0e5c02000 r--p 00000000 08:01 1311 /usr/bin/llama-server\n"
        "7f0000000000-7f0000200000 r--s 00000000 08:01 99   /models/q 8b.gguf\n"
        "7f0000200000-7f0000300000 rw-p 00000000 00:00 0 \n"
        "7ffc00000000-7ffc00021000 rw-p 00000000 00:00 0    [stack]\n",
        {{"/models/q 8b.gguf", 0x200000}});
    row("in two mappings",
        "1000-2000 r--s 0 08:01 9 /m/a.safetensors\n3000-6000 r--s 0 08:01 9 /m/a.safetensors\n",
        {{"/m/a.safetensors", 0x4000}});
    row("two files",
        "1000-2000 r--s 0 08:01 9 /m/a-00001-of-00002.gguf\n"
        "3000-6000 r--s 0 08:01 9 /m/a-00002-of-00002.gguf",
        {{"/m/a-00001-of-00002.gguf", 0x1000}, {"/m/a-00002-of-00002.gguf", 0x3000}});
    row("removed meanwhile", "1000-2000 r--s 0 08:01 9 /m/a.gguf (deleted)\n",
        {{"/m/a.gguf", 0x1000}});
    row("a range that ends before it begins", "2000-1000 r--s 0 08:01 9 /m/a.gguf\n", {});
    row("a range as large as any number can be", "0-ffffffffffffffff r--s 0 08:01 9 /m/a.gguf\n",
        {});
    row("a range that is none", "x-y r--s 0 08:01 9 /m/a.gguf\n1000 r--s 0 0 0 /m/b.gguf\n", {});
    row("a line that ends early", "1000-2000 r--s\n1000-2000\n\n", {});
    row("a relative path", "1000-2000 r--s 0 08:01 9 a.gguf\n", {});
    row("not UTF-8", "1000-2000 r--s 0 08:01 9 /m/\xff.gguf\n", {});
    row("nothing", "", {});
}

void TestMappedFiles::readsMaps()
{
    QFETCH(std::string, maps);
    QFETCH(Files, expected);
    QVERIFY(parseMaps(maps) == expected);
}

void TestMappedFiles::knowsModelFiles_data()
{
    QTest::addColumn<std::string>("path");
    QTest::addColumn<bool>("isModel");
    const std::string digest(64, 'a');
    QTest::newRow("GGUF") << std::string("/m/a.gguf") << true;
    QTest::newRow("in capitals") << std::string("/m/A.GGUF") << true;
    QTest::newRow("safetensors") << std::string("/m/model.safetensors") << true;
    QTest::newRow("Ollama's") << "/m/blobs/sha256-" + digest << true;
    QTest::newRow("a download that is not complete")
        << "/m/blobs/sha256-" + digest + "-partial" << true;
    QTest::newRow("Hugging Face's") << "/hub/models--a--b/blobs/" + digest << true;
    QTest::newRow("a short blob") << std::string("/m/blobs/sha256-12") << false;
    QTest::newRow("a library") << std::string("/usr/lib/libggml.so") << false;
    QTest::newRow("the ending alone") << std::string(".gguf") << true;
    QTest::newRow("nothing") << std::string() << false;
}

void TestMappedFiles::knowsModelFiles()
{
    QFETCH(std::string, path);
    QTEST(isModelPath(path), "isModel");
}

QTEST_APPLESS_MAIN(TestMappedFiles)
#include "tst_MappedFiles.moc"
