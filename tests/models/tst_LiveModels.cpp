#include "models/GGUFText.h"
#include "models/ModelNames.h"
#include "models/ModelTree.h"
#include "processes/LiveProcess.h"
#include "processes/Surveyor.h"

#include <QTest>

using namespace corvane;
using namespace corvane::test;
using namespace Qt::StringLiterals;

using Model = std::optional<QString>;

namespace {

constexpr int mebibytes = 210;
const std::string library = "registry.ollama.ai/library/";

/// The one workload among real processes, as a survey with names shows it.
AIWorkload surveyed(const LiveProcess &process)
{
    Survey survey = Surveyor(ProcView{process.pid()}.source()).take();
    ModelNames(std::make_shared<ModelResolver>()).name(survey.workloads);
    return survey.workloads.size() == 1 ? survey.workloads.front() : AIWorkload();
}

std::string header()
{
    return GGUFText()
        .text("general.name", "Qwen3 8B")
        .u32("qwen3.context_length", 40960)
        .u32("general.file_type", 15)
        .bytes();
}

} // namespace

class TestLiveModels : public QObject {
    Q_OBJECT

private slots:
    void namesRealProcesses_data();
    void namesRealProcesses();

private:
    ModelTree m_tree;
};

void TestLiveModels::namesRealProcesses_data()
{
    m_tree.writeManifest(library + "qwen3/8b", ModelTree::manifest('1'));
    m_tree.writeBlob('1', header());
    m_tree.writeBlob('a', ModelTree::manifest('2'));
    m_tree.linkManifest(library + "gemma3/4b",
                        "../../../../../blobs/sha256-" + ModelTree::digest('a'));
    m_tree.write("model.gguf", header() + std::string(8192, 'x'));
    m_tree.write("llama-3.2-3b-Q8_0.gguf", std::string(8192, 'x'));
    const QString root = QString::fromStdString(m_tree.root());

    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("mapped");
    QTest::addColumn<QString>("framework");
    QTest::addColumn<Model>("model");
    QTest::addColumn<Model>("quantisation");
    const auto row = [](const char *title, const QString &name, const QStringList &arguments,
                        const QString &mapped, const char *framework, const Model &model,
                        const Model &quantisation) {
        QTest::newRow(title) << name << arguments << mapped << QString::fromLatin1(framework)
                             << model << quantisation;
    };
    const auto blob = [this](char digit) { return QString::fromStdString(m_tree.blob(digit)); };
    row("Ollama's runner, first layout", u"ollama"_s, {u"runner"_s, u"--model"_s, blob('1')}, {},
        "ollama", u"qwen3:8b"_s, u"Q4_K_M"_s);
    row("Ollama's runner, newer layout", u"llama-server"_s, {u"--model"_s, blob('2')}, {}, "ollama",
        u"gemma3:4b"_s, {});
    row("a blob of no manifest", u"llama-server"_s, {u"--model"_s, blob('3')}, {}, "ollama",
        u"blob 333333333333"_s, {});
    row("a name in the header", u"llama-server"_s, {u"-m"_s, root + u"/model.gguf"_s}, {},
        "llamaCpp", u"Qwen3 8B"_s, u"Q4_K_M"_s);
    row("a mapped file", u"llama-cpp-avx2"_s, {u"--addr"_s, u"127.0.0.1:4"_s},
        root + u"/llama-3.2-3b-Q8_0.gguf"_s, "localAI", u"llama-3.2-3b-Q8_0.gguf"_s, u"Q8_0"_s);
    row("a mapped file whose name says nothing", u"llmster"_s, {}, root + u"/model.gguf"_s,
        "lmStudio", u"Qwen3 8B"_s, u"Q4_K_M"_s);
    row("a repository", u"mistralrs-server"_s, {u"plain"_s, u"-m"_s, u"Qwen/Qwen3-4B"_s}, {},
        "mistralRs", u"Qwen/Qwen3-4B"_s, {});
}

void TestLiveModels::namesRealProcesses()
{
    QFETCH(QString, name);
    QFETCH(QStringList, arguments);
    QFETCH(QString, mapped);
    QFETCH(QString, framework);
    LiveProcess process(name, arguments, mebibytes, mapped);
    QVERIFY(process.isReady());
    const AIWorkload workload = surveyed(process);
    QCOMPARE(workload.pid, process.pid());
    QCOMPARE(rawValue(workload.framework), framework);
    QTEST(workload.model, "model");
    QTEST(workload.details.quantisation, "quantisation");
    const auto expected = mapped.isEmpty() ? std::nullopt : std::optional<std::uint64_t>(4096);
    QCOMPARE(workload.details.mappedBytes, expected);
    QVERIFY(workload.memory >= std::uint64_t(mebibytes - 10) << 20);
}

QTEST_GUILESS_MAIN(TestLiveModels)
#include "tst_LiveModels.moc"
