#include "processes/AIProcessDetector.h"
#include "processes/SecondRules.h"

#include <QFile>
#include <QProcess>
#include <QTest>

#include <set>

using namespace corvane;
using namespace Qt::StringLiterals;

using Model = std::optional<QString>;

Q_DECLARE_METATYPE(Model)

namespace {

/// The lines of a table, split into their columns.
QList<QStringList> linesOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QList<QStringList> lines;
    for (const QString &line : QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)) {
        if (!line.startsWith(u'#'))
            lines.append(line.split(u'\t'));
    }
    return lines;
}

QList<QStringList> runners()
{
    return linesOf(QStringLiteral(CORVANE_RUNNERS));
}

QList<QStringList> others()
{
    return linesOf(QStringLiteral(CORVANE_NOT_AI));
}

/// A process with that working folder; "-" where the rules must not ask for it.
std::optional<Recognition> recognised(const QString &name, const QString &folder,
                                      const QString &commandLine, bool *asked = nullptr)
{
    return recognise({.name = name,
                      .executable = {},
                      .argv = QProcess::splitCommand(commandLine),
                      .folder = [folder, asked]() -> std::optional<QString> {
                          if (asked)
                              *asked = true;
                          return folder == "-"_L1 ? std::nullopt : std::optional(folder);
                      }});
}

} // namespace

class TestSecondRules : public QObject {
    Q_OBJECT

private slots:
    void recognisesRunners_data();
    void recognisesRunners();
    void looksAtTheNamesOfRunners_data();
    void looksAtTheNamesOfRunners();
    void coversEveryFramework();
    void leavesOthersAlone_data();
    void leavesOthersAlone();
    void keepsTheWholeArgumentOfAModel_data();
    void keepsTheWholeArgumentOfAModel();
    void asksForTheFolderOnlyWhereARuleNamesOne();
    void knowsOllamasRunnerByItsExecutable();
    void joinsPartsWithTheirServer();
    void readsTheContextLength();
};

void TestSecondRules::recognisesRunners_data()
{
    QTest::addColumn<QStringList>("columns");
    for (const QStringList &columns : runners())
        QTest::newRow(qPrintable(columns.value(2) + u": "_s + columns.value(4) + u" in "_s
                                 + columns.value(3)))
            << columns;
}

void TestSecondRules::recognisesRunners()
{
    QFETCH(QStringList, columns);
    QCOMPARE(columns.size(), 5);
    const auto found = recognised(columns[2], columns[3], columns[4]);
    QCOMPARE(found ? rawValue(found->framework) : u"-"_s, columns[0]);
    const bool isPart = columns[1] == "ancestor"_L1;
    QCOMPARE(found->isPart, isPart);
    QCOMPARE(found->model, isPart || columns[1] == "-"_L1 ? Model() : Model(columns[1]));
    // The arguments of other names are never read.
    QVERIFY(AIProcessDetector::nameLooksRelevant(columns[2]) || nameMayBeARunner(columns[2]));
}

void TestSecondRules::looksAtTheNamesOfRunners_data()
{
    QTest::addColumn<bool>("expected");
    for (const char *name :
         {"vllm", "VLLM::Worker", "sglang::schedul", "exo", "text-generation", "Node", "chat",
          "pt_main_thread", "model.LLAMAFILE", "any-name-of-fif", "mlx_lm.generate"})
        QTest::newRow(name) << true;
    for (const char *name :
         {"", "java", "firefox", "bash", "exodus", "chat2", "llamafiles", "any-name-of-four"})
        QTest::newRow(name) << false;
}

void TestSecondRules::looksAtTheNamesOfRunners()
{
    QTEST(nameMayBeARunner(QString::fromUtf8(QTest::currentDataTag())), "expected");
}

void TestSecondRules::coversEveryFramework()
{
    std::set<QString> found;
    for (const QStringList &columns : runners())
        found.insert(columns[0]);
    for (const AIFramework framework : furtherAIFrameworks)
        QVERIFY2(found.contains(rawValue(framework)), qPrintable(rawValue(framework)));
}

void TestSecondRules::leavesOthersAlone_data()
{
    QTest::addColumn<QStringList>("columns");
    QVERIFY(others().size() >= 40);
    for (const QStringList &columns : others())
        QTest::newRow(qPrintable(columns.value(0) + u": "_s + columns.value(2) + u" in "_s
                                 + columns.value(1)))
            << columns;
}

void TestSecondRules::leavesOthersAlone()
{
    QFETCH(QStringList, columns);
    QCOMPARE(columns.size(), 3);
    const auto found = recognised(columns[0], columns[1], columns[2]);
    // A worker counts only together with the server that started it.
    QCOMPARE(found ? rawValue(found->framework) : u"-"_s, u"-"_s);
}

void TestSecondRules::keepsTheWholeArgumentOfAModel_data()
{
    QTest::addColumn<QString>("commandLine");
    QTest::addColumn<Model>("path");
    QTest::newRow("a file") << u"llama-server -m /models/q.gguf"_s << Model(u"/models/q.gguf"_s);
    QTest::newRow("a relative file") << u"llama-server -m m/q.gguf"_s << Model(u"m/q.gguf"_s);
    QTest::newRow("a repository") << u"llama-server -hf org/repo"_s << Model();
    QTest::newRow("none") << u"llama-server --port 80"_s << Model();
    QTest::newRow("a file under an alias")
        << u"llama-server -m /m/model.gguf --alias x"_s << Model(u"/m/model.gguf"_s);
}

void TestSecondRules::keepsTheWholeArgumentOfAModel()
{
    QFETCH(QString, commandLine);
    QTEST(recognised(u"llama-server"_s, u"-"_s, commandLine)->details.path, "path");
}

void TestSecondRules::asksForTheFolderOnlyWhereARuleNamesOne()
{
    bool asked = false;
    recognised(u"python3"_s, u"/x"_s, u"python3 manage.py"_s, &asked);
    recognised(u"bash"_s, u"/x/ComfyUI"_s, u"bash main.py"_s, &asked);
    recognised(u"python3"_s, u"/x"_s, u"python3 /opt/tabbyAPI/main.py"_s, &asked);
    QVERIFY(!asked);
    recognised(u"python3"_s, u"/x"_s, u"python3 main.py"_s, &asked);
    QVERIFY(asked);
}

void TestSecondRules::knowsOllamasRunnerByItsExecutable()
{
    const auto found = recognise({.name = u"llama-server"_s,
                                  .executable = u"/usr/lib/ollama/llama-server"_s,
                                  .argv = {u"llama-server"_s, u"--port"_s, u"80"_s}});
    QVERIFY(found && found->framework == AIFramework::ollama);
}

void TestSecondRules::joinsPartsWithTheirServer()
{
    const auto server = recognised(u"vllm"_s, u"-"_s, u"python3 /bin/vllm serve Qwen/Qwen3-8B"_s);
    const auto title = recognised(u"VLLM::EngineCor"_s, u"-"_s, u"VLLM::EngineCore"_s);
    const auto worker = recognised(
        u"python3"_s, u"-"_s, u"python3 -c \"from multiprocessing.spawn import spawn_main\""_s);
    for (const auto &part : {title, worker}) {
        const Recognition whole = joined(*part, *server);
        QCOMPARE(whole.framework, AIFramework::vllm);
        QCOMPARE(whole.model, Model(u"Qwen/Qwen3-8B"_s));
        QVERIFY(!whole.isPart);
    }
}

void TestSecondRules::readsTheContextLength()
{
    const auto context = [](const QString &options) {
        return recognised(u"llama-server"_s, u"-"_s, u"llama-server -m q.gguf "_s + options)
            ->details.contextLength;
    };
    QCOMPARE(context(u"--ctx-size 8192"_s), std::optional<std::uint64_t>(8192));
    QCOMPARE(context(u"--ctx-size=4096"_s), std::optional<std::uint64_t>(4096));
    QCOMPARE(context(u"--ctx-size 0"_s), std::nullopt);
    QCOMPARE(context(u"--ctx-size many"_s), std::nullopt);
    QCOMPARE(context(u"--ctx-size 99999999999999999999"_s), std::nullopt);
    QCOMPARE(context(u""_s), std::nullopt);
}

QTEST_APPLESS_MAIN(TestSecondRules)
#include "tst_SecondRules.moc"
