#include "models/GGUFText.h"
#include "models/ModelResolver.h"
#include "models/ModelTree.h"

#include <QTest>

#include <sys/stat.h>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

using Model = std::optional<QString>;

namespace {

const std::string library = "registry.ollama.ai/library/";

QString text(const std::string &utf8)
{
    return QString::fromStdString(utf8);
}

/// What a process uses, as a test wants it.
struct Use {
    std::vector<MappedFile> mapped = {};
    std::vector<std::string> opened = {};
    std::optional<std::string> folder = {};
    std::string inside = {}; ///< Where a container's files lie.
};

ModelFinding resolved(const AIWorkload &workload, const Use &use = {})
{
    ModelResolver resolver(
        {.mapped = [use](std::int32_t) { return use.mapped; },
         .opened = [use](std::int32_t) { return use.opened; },
         .reachable = [use](std::int32_t, const std::string &path) { return use.inside + path; }},
        [use](std::int32_t) { return use.folder; });
    return resolver.resolve(workload);
}

/// A workload whose command line names that path, as the rules show it.
AIWorkload withPath(const std::string &path, const QString &model)
{
    return {.pid = 7, .model = model, .details = {.path = text(path)}};
}

std::string header(const char *name = "Qwen3 8B")
{
    return GGUFText()
        .text("general.name", name)
        .u32("qwen3.context_length", 40960)
        .u32("general.file_type", 15)
        .bytes();
}

} // namespace

class TestModelResolver : public QObject {
    Q_OBJECT

private slots:
    void namesOllamasModels();
    void namesABlobOfNoManifestByItsHeader();
    void keepsTheShortDigestOfAClosedStore();
    void readsTheHeaderWhereTheNameSaysNothing();
    void keepsANameThatSaysSomething();
    void findsFilesOfAContainer();
    void findsRelativeFiles();
    void findsTheFileThatAProcessUses_data();
    void findsTheFileThatAProcessUses();
    void namesMappedBlobsOfStores();
    void survivesHostileFiles_data();
    void survivesHostileFiles();
    void leavesNamesAlone();
};

void TestModelResolver::namesOllamasModels()
{
    const ModelTree tree;
    tree.writeManifest(library + "qwen3/8b", ModelTree::manifest('1'));
    tree.writeManifest(library + "qwen3/latest", ModelTree::manifest('1'));
    tree.writeBlob('1', header("Qwen3 8B from the header"));
    const auto finding = resolved(withPath(tree.blob('1'), u"blob 111111111111"_s));
    QCOMPARE(finding.model, Model(u"qwen3:8b"_s));
    QCOMPARE(finding.details.origin, ModelOrigin::ollamaStore);
    QCOMPARE(finding.details.otherNames, QStringList{u"qwen3:latest"_s});
    QCOMPARE(finding.details.quantisation, Model(u"Q4_K_M"_s));
    QCOMPARE(finding.details.trainedLength, std::optional<std::uint64_t>(40960));
}

void TestModelResolver::namesABlobOfNoManifestByItsHeader()
{
    const ModelTree tree;
    tree.writeBlob('1', header());
    const auto finding = resolved(withPath(tree.blob('1'), u"blob 111111111111"_s));
    QCOMPARE(finding.model, Model(u"Qwen3 8B"_s));
    QCOMPARE(finding.details.origin, ModelOrigin::fileHeader);
}

void TestModelResolver::keepsTheShortDigestOfAClosedStore()
{
    const auto finding =
        resolved(withPath("/nowhere/blobs/sha256-" + ModelTree::digest('1'), u"blob 1111"_s));
    QCOMPARE(finding.model, Model(u"blob 1111"_s));
    QCOMPARE(finding.details.origin, ModelOrigin::arguments);
    QVERIFY(finding.isComplete);
}

void TestModelResolver::readsTheHeaderWhereTheNameSaysNothing()
{
    const ModelTree tree;
    for (const char *name : {"model.gguf", "model.file", "ggml-model-q4_0.gguf"}) {
        tree.write(name, header());
        const auto finding = resolved(withPath(tree.root() + '/' + name, text(name)));
        QCOMPARE(finding.model, Model(u"Qwen3 8B"_s));
        QCOMPARE(finding.details.origin, ModelOrigin::fileHeader);
    }
}

void TestModelResolver::keepsANameThatSaysSomething()
{
    const ModelTree tree;
    tree.write("qwen3-8b-Q5_K_M.gguf", header());
    const auto finding =
        resolved(withPath(tree.root() + "/qwen3-8b-Q5_K_M.gguf", u"qwen3-8b-Q5_K_M.gguf"_s));
    QCOMPARE(finding.model, Model(u"qwen3-8b-Q5_K_M.gguf"_s));
    QCOMPARE(finding.details.origin, ModelOrigin::arguments);
    QCOMPARE(finding.details.quantisation, Model(u"Q4_K_M"_s)); // The file knows better.
    QCOMPARE(finding.details.trainedLength, std::optional<std::uint64_t>(40960));
}

void TestModelResolver::findsFilesOfAContainer()
{
    const ModelTree tree;
    tree.write("mnt/models/model.file", header());
    const auto finding =
        resolved(withPath("/mnt/models/model.file", u"model.file"_s), {.inside = tree.root()});
    QCOMPARE(finding.model, Model(u"Qwen3 8B"_s));
}

void TestModelResolver::findsRelativeFiles()
{
    const ModelTree tree;
    tree.write("m/model.gguf", header());
    const auto workload = withPath("m/model.gguf", u"model.gguf"_s);
    QCOMPARE(resolved(workload, {.folder = tree.root()}).model, Model(u"Qwen3 8B"_s));
    QCOMPARE(resolved(workload).model, Model(u"model.gguf"_s));
}

void TestModelResolver::findsTheFileThatAProcessUses_data()
{
    QTest::addColumn<std::vector<MappedFile>>("mapped");
    QTest::addColumn<std::vector<std::string>>("opened");
    QTest::addColumn<Model>("model");
    using Mapped = std::vector<MappedFile>;
    using Opened = std::vector<std::string>;
    QTest::newRow("mapped") << Mapped{{"/m/a.gguf", 9}} << Opened{} << Model(u"a.gguf"_s);
    QTest::newRow("the larger one of two")
        << Mapped{{"/m/a.gguf", 9}, {"/m/b.gguf", 10}} << Opened{} << Model(u"b.gguf"_s);
    QTest::newRow("mapped and open")
        << Mapped{{"/m/a.gguf", 9}} << Opened{"/m/c.gguf"} << Model(u"a.gguf"_s);
    QTest::newRow("open") << Mapped{} << Opened{"/m/c.safetensors", "/m/d.gguf"}
                          << Model(u"c.safetensors"_s);
    QTest::newRow("open, with a projector before it")
        << Mapped{} << Opened{"/m/mmproj-c.gguf", "/m/d.gguf"} << Model(u"d.gguf"_s);
    QTest::newRow("of Hugging Face's cache")
        << Mapped{{"/hub/models--Qwen--Qwen3-8B/blobs/" + std::string(64, 'a'), 9}} << Opened{}
        << Model(u"Qwen/Qwen3-8B"_s);
    QTest::newRow("none") << Mapped{} << Opened{} << Model();
}

void TestModelResolver::findsTheFileThatAProcessUses()
{
    QFETCH(std::vector<MappedFile>, mapped);
    QFETCH(std::vector<std::string>, opened);
    QFETCH(Model, model);
    const auto finding = resolved({.pid = 7}, {.mapped = mapped, .opened = opened});
    QCOMPARE(finding.model, model);
    QCOMPARE(finding.details.origin, model ? ModelOrigin::usedFile : ModelOrigin::arguments);
    QCOMPARE(finding.details.mappedBytes.has_value(), !mapped.empty());
}

void TestModelResolver::namesMappedBlobsOfStores()
{
    const ModelTree tree;
    tree.writeManifest(library + "qwen3/8b", ModelTree::manifest('1'));
    const auto finding = resolved({.pid = 7}, {.mapped = {{tree.blob('1'), 4096}}});
    QCOMPARE(finding.model, Model(u"qwen3:8b"_s));
    QCOMPARE(finding.details.mappedBytes, std::optional<std::uint64_t>(4096));
}

void TestModelResolver::survivesHostileFiles_data()
{
    QTest::addColumn<std::string>("bytes");
    QTest::newRow("empty") << std::string();
    QTest::newRow("garbage") << std::string(70'000, '\xff');
    QTest::newRow("a name that is not UTF-8") << GGUFText().text("general.name", "\xff").bytes();
    QTest::newRow("more pairs than bytes") << GGUFText().bytes(~std::uint64_t(0));
    QTest::newRow("missing") << std::string("-");
    QTest::newRow("a FIFO") << std::string("fifo");
}

void TestModelResolver::survivesHostileFiles()
{
    QFETCH(std::string, bytes);
    const ModelTree tree;
    const std::string path = tree.root() + "/model.gguf";
    if (bytes == "fifo")
        QVERIFY(mkfifo(path.c_str(), 0600) == 0);
    else if (bytes != "-")
        tree.write("model.gguf", bytes);
    const auto finding = resolved(withPath(path, u"model.gguf"_s));
    QCOMPARE(finding.model, Model(u"model.gguf"_s));
    QCOMPARE(finding.details.quantisation, Model());
}

void TestModelResolver::leavesNamesAlone()
{
    const auto finding =
        resolved({.pid = 7, .model = u"org/repo:Q4_K_M"_s}, {.mapped = {{"/cache/x.gguf", 100}}});
    QCOMPARE(finding.model, Model(u"org/repo:Q4_K_M"_s));
    QCOMPARE(finding.details.quantisation, Model(u"Q4_K_M"_s));
    QCOMPARE(finding.details.mappedBytes, std::optional<std::uint64_t>(100));
}

QTEST_APPLESS_MAIN(TestModelResolver)
#include "tst_ModelResolver.moc"
