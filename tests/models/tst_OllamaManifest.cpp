#include "models/OllamaManifest.h"

#include <QTest>

using namespace corvane;

using Found = std::optional<OllamaManifest>;

namespace {

const std::string a(64, 'a');
const std::string b(64, 'b');

std::string layer(const std::string &digest, const std::string &kind = "model")
{
    return R"({"mediaType":"application/vnd.ollama.image.)" + kind + R"(","digest":"sha256:)"
        + digest + R"(","size":1})";
}

std::string layers(const std::string &items)
{
    return R"({"schemaVersion":2,"layers":[)" + items + "]}";
}

} // namespace

class TestOllamaManifest : public QObject {
    Q_OBJECT

private slots:
    void reads_data();
    void reads();
    void refuses_data();
    void refuses();
    void readsTenThousandLayers();
    void cutsLongLists();
    void knowsDigests_data();
    void knowsDigests();
    void namesModels_data();
    void namesModels();
};

Q_DECLARE_METATYPE(OllamaManifest)

void TestOllamaManifest::reads_data()
{
    QTest::addColumn<std::string>("json");
    QTest::addColumn<OllamaManifest>("expected");
    const auto row = [](const char *name, const std::string &json, const OllamaManifest &expected) {
        QTest::newRow(name) << json << expected;
    };
    row("weights and a template", layers(layer(b, "template") + ',' + layer(a)), {.models = {a}});
    row("two files of weights", layers(layer(a) + ',' + layer(b)), {.models = {a, b}});
    row("tensors alone", layers(layer(a, "tensor")), {});
    row("the digest before the kind",
        layers(R"({"digest":"sha256:)" + a
               + R"(","mediaType":"application/vnd.ollama.image.model"})"),
        {.models = {a}});
    row("a list of manifests", R"({"manifests":[{"digest":"sha256:)" + a + R"("}]})",
        {.manifests = {a}});
    row("a digest of another kind",
        layers(R"({"mediaType":"application/vnd.ollama.image.model","digest":"md5:12"})"), {});
    row("a layer that is deeper", layers("[" + layer(a) + "]"), {});
    row("values of a deeper object do not count",
        layers(R"({"mediaType":"application/vnd.ollama.image.model","x":{"digest":"sha256:)" + a
               + R"("}})"),
        {});
    row("nothing", "{}", {});
    row("no object", "[1]", {});
}

void TestOllamaManifest::reads()
{
    QFETCH(std::string, json);
    QFETCH(OllamaManifest, expected);
    QVERIFY(parseOllamaManifest(json) == Found(expected));
}

void TestOllamaManifest::refuses_data()
{
    QTest::addColumn<std::string>("json");
    QTest::newRow("empty") << std::string();
    QTest::newRow("cut") << layers(layer(a)).substr(0, 90);
    QTest::newRow("something behind it") << layers(layer(a)) + "x";
    QTest::newRow("not UTF-8") << std::string("{\"layers\":\"\xff\"}");
    QTest::newRow("nested without end") << std::string(1 << 20, '[');
    QTest::newRow("objects without end") << [] {
        std::string text;
        for (int i = 0; i < 10'000; ++i)
            text += "{\"a\":";
        return text;
    }();
}

void TestOllamaManifest::refuses()
{
    QFETCH(std::string, json);
    QVERIFY(!parseOllamaManifest(json));
}

void TestOllamaManifest::readsTenThousandLayers()
{
    std::string items = layer(a);
    for (int i = 0; i < 10'000; ++i)
        items += ',' + layer(b, "tensor");
    QVERIFY(parseOllamaManifest(layers(items)) == Found(OllamaManifest{.models = {a}}));
}

void TestOllamaManifest::cutsLongLists()
{
    std::string items = layer(a);
    for (std::size_t i = 0; i < 2 * mostDigests; ++i)
        items += ',' + layer(b);
    QCOMPARE(parseOllamaManifest(layers(items))->models.size(), mostDigests);
}

void TestOllamaManifest::knowsDigests_data()
{
    QTest::addColumn<std::string>("text");
    QTest::addColumn<bool>("isDigest");
    QTest::newRow("in JSON") << "sha256:" + a << true;
    QTest::newRow("as a file") << "sha256-" + a << true;
    QTest::newRow("alone") << a << false;
    QTest::newRow("of another sign") << "sha256/" + a << false;
    QTest::newRow("too short") << "sha256:" + a.substr(1) << false;
    QTest::newRow("too long") << "sha256:" + a + "a" << false;
    QTest::newRow("capitals") << "sha256:" + std::string(64, 'A') << false;
    QTest::newRow("a way out of the folder") << "sha256-" + std::string(64, '/') << false;
    QTest::newRow("nothing") << std::string() << false;
}

void TestOllamaManifest::knowsDigests()
{
    QFETCH(std::string, text);
    QTEST(digestDigits(text).has_value(), "isDigest");
}

void TestOllamaManifest::namesModels_data()
{
    QTest::addColumn<std::string>("host");
    QTest::addColumn<std::string>("space");
    QTest::addColumn<std::string>("expected");
    const auto row = [](const char *name, const char *host, const char *space,
                        const char *expected) {
        QTest::newRow(name) << std::string(host) << std::string(space) << std::string(expected);
    };
    row("the library", "registry.ollama.ai", "library", "qwen3:8b");
    row("the library under its other host", "ollama.com", "library", "qwen3:8b");
    row("another namespace", "registry.ollama.ai", "me", "me/qwen3:8b");
    row("another host", "hf.co", "bartowski", "hf.co/bartowski/qwen3:8b");
    row("the library of another host", "hf.co", "library", "hf.co/library/qwen3:8b");
}

void TestOllamaManifest::namesModels()
{
    QFETCH(std::string, host);
    QFETCH(std::string, space);
    QTEST(ollamaName(host, space, "qwen3", "8b"), "expected");
}

QTEST_APPLESS_MAIN(TestOllamaManifest)
#include "tst_OllamaManifest.moc"
