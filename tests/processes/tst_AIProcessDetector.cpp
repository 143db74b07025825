#include "processes/AIProcessDetector.h"
#include "processes/FactsCache.h"

#include <QTest>

#include <map>

using namespace corvane;
using namespace Qt::StringLiterals;

using Match = AIProcessDetector::Match;
using Result = std::optional<Match>;
using Model = std::optional<QString>;
using Records = std::vector<ProcessRecord>;

Q_DECLARE_METATYPE(Result)
Q_DECLARE_METATYPE(Model)
Q_DECLARE_METATYPE(Records)

namespace {

constexpr std::uint64_t MiB = 1 << 20;
constexpr std::uint64_t enough = 200 * MiB;

/// Stands in for the system: command lines by process, and a record of what was read.
struct CommandLines {
    std::map<std::int32_t, std::vector<std::string>> byPid = {};
    std::vector<std::int32_t> reads = {};

    FactsReader reader()
    {
        return [this](const ProcessIdentity &process) -> std::optional<ArgumentFacts> {
            reads.push_back(process.pid);
            const auto found = byPid.find(process.pid);
            if (found == byPid.end())
                return ArgumentFacts();
            return AIProcessDetector::takeFacts(ArgumentRecord{.path = {}, .argv = found->second});
        };
    }
};

/// Every process was started at the same time.
std::optional<ProcessIdentity> identify(std::int32_t pid)
{
    return ProcessIdentity{.pid = pid, .startTime = 1};
}

/// The workloads of a machine with these processes.
std::vector<AIWorkload> detect(const Records &records, const FactsReader &read, FactsCache &cache)
{
    return AIProcessDetector::detectAll([&records](std::int32_t) { return records; }, identify,
                                        read, cache);
}

QList<qint64> pids(const std::vector<AIWorkload> &workloads)
{
    QList<qint64> list;
    for (const AIWorkload &workload : workloads)
        list.append(workload.pid);
    return list;
}

} // namespace

class TestAIProcessDetector : public QObject {
    Q_OBJECT

private slots:
    void classifies_data();
    void classifies();
    void knowsRelevantNames_data();
    void knowsRelevantNames();
    void findsModelsInFlags_data();
    void findsModelsInFlags();
    void findsModelsInCheckpoints_data();
    void findsModelsInCheckpoints();
    void findsTheModelOfOllama_data();
    void findsTheModelOfOllama();
    void knowsModules_data();
    void knowsModules();
    void makesBasenames_data();
    void makesBasenames();
    void describesWorkloads();
    void examinesEightyProcesses();
    void reports_data();
    void reports();
    void sortsByMemoryAndKeepsTheOrderOfEqualOnes();
    void readsArgumentsOnce();
    void keepsTheArgumentsOfTheFirstSighting();
    void doesNotRetryAFailedRead();
    void readsThoseOfAnotherProcessWithTheSameNumber();
    void asksAgainWhatCouldNotBeAskedFor();
    void reportsByItsNameAProcessThatHasJustEnded();
    void keepsOfArgumentsOnlyWhatTheRulesMakeOfThem();
    void readsWithoutLockingTheCache();
    void forgetsProcessesThatLeftTheRanking();
    void remembersProcessesThatShrankButStayed();
};

void TestAIProcessDetector::classifies_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("argv");
    QTest::addColumn<Result>("expected");
    const auto row = [](const char *title, const QString &name, const QString &argv,
                        const Result &expected) {
        QTest::newRow(title) << name << argv.split(u' ', Qt::SkipEmptyParts) << expected;
    };
    const auto match = [](AIFramework framework, const Model &model = {}) {
        return Result({framework, model});
    };
    using enum AIFramework;

    row("ollama run without a model", u"ollama"_s, u"ollama run"_s, match(ollama));
    row("ollama anywhere in the name, in any case", u"My-OLLAMA_server"_s, u""_s, match(ollama));
    row("a name with ollama goes before one with kobold", u"kobold-ollama"_s, u""_s, match(ollama));
    row("kobold goes before whisper", u"kobold-whisper"_s, u""_s, match(koboldCpp));
    row("llama- goes before whisper", u"llama-whisper"_s, u""_s, match(llamaCpp));
    row("whisper goes before LM Studio", u"lms-whisper"_s, u""_s, match(whisperCpp));
    row("whisper goes before the interpreters", u"python-whisper"_s, u"x -m mlx"_s,
        match(whisperCpp));
    row("LM Studio goes before the interpreters", u"python-lms-server"_s, u"x -m mlx"_s,
        match(lmStudio));
    row("-m with a bare word is no model", u"llama-server"_s, u"llama-server -m llama3"_s,
        match(llamaCpp));
    row("llama.cpp", u"LLAMA.cpp"_s, u""_s, match(llamaCpp));
    row("llama- only at the start", u"my-llama-server"_s, u"-m /m/x.gguf"_s, {});
    row("llama alone is not enough", u"llama"_s, u"-m /m/x.gguf"_s, {});
    row("main with a model file", u"main"_s, u"./main -m x.GGUF"_s, match(llamaCpp, u"x.GGUF"_s));
    row("main without one", u"main"_s, u"./main --model /m/x.safetensors"_s, {});
    row("LM Studio has no model", u"LM Studio"_s, u"LM Studio --model x"_s, match(lmStudio));
    row("lms- within the name", u"my-lms-server"_s, u""_s, match(lmStudio));
    row("lms within a word", u"films"_s, u""_s, {});

    for (const char *name :
         {"mlx", "vllm", "comfy", "forge", "stable-diffusion", "automatic1111", "sd-webui"}) {
        const QString framework = QString::fromLatin1(name);
        QTest::addRow("a program named %s does not match", name)
            << framework << QStringList{framework, u"--model"_s, u"/m/x.gguf"_s} << Result();
    }

    row("an interpreter without arguments", u"python3"_s, u""_s, {});
    row("torch is an interpreter", u"torch"_s, u"torch -m mlx"_s, match(mlx));
    row("torch only as the whole name", u"torchrun"_s, u"torchrun -m mlx"_s, {});
    row("huggingface within the name", u"my-huggingface-tool"_s, u"x -m mlx"_s, match(mlx));
    row("python not at the start", u"ipython3"_s, u"ipython3 -m mlx"_s, {});
    row("/mlx/", u"python3"_s, u"python3 /src/mlx/run.py"_s, match(mlx));
    row("module mlx", u"python3"_s, u"python3 --module mlx"_s, match(mlx));
    row("mlx as a plain argument", u"python3"_s, u"python3 mlx"_s, {});
    row("module mlx in another case", u"python3"_s, u"python3 -m MLX"_s, {});
    row("mlx goes before vllm", u"python3"_s, u"python3 -m vllm /src/mlx/run.py"_s, match(mlx));
    row("module vllm", u"python3"_s, u"python3 -m vllm"_s, match(vllm));
    row("vllm goes before ComfyUI", u"python3"_s, u"python3 ComfyUI/main.py vllm"_s, match(vllm));
    row("ComfyUI goes before the web interfaces", u"python3"_s,
        u"python3 /srv/stable-diffusion/ComfyUI/main.py"_s, match(comfyUI));
    row("ComfyUI takes no model from flags", u"python3"_s, u"python3 ComfyUI/main.py --model x"_s,
        match(comfyUI));
    row("webui.py with the first model file", u"python3"_s,
        u"python3 webui.py --vae v.pt --ckpt models/v1-5.safetensors --lora b.ckpt"_s,
        match(sdWebUI, u"v1-5.safetensors"_s));
    row("forge", u"python3"_s, u"python3 /srv/Forge/launch.py"_s, match(sdWebUI));
    row("sd-webui", u"python3"_s, u"python3 /srv/sd-webui/launch.py"_s, match(sdWebUI));
    row("a web interface goes before transformers", u"python3"_s,
        u"python3 webui.py --cache /srv/transformers"_s, match(sdWebUI));
    row("a web interface takes no model from flags", u"python3"_s,
        u"python3 webui.py --model /m/x.pt"_s, match(sdWebUI));
    row("transformers goes before a model file", u"python3"_s,
        u"python3 -m transformers.serve /m/x.gguf"_s, match(transformers, u"x.gguf"_s));
    row("a model file alone", u"python3"_s, u"python3 chat.py /m/x.Q4.gguf"_s,
        match(generic, u"x.Q4.gguf"_s));
    row("a safetensors file", u"python3"_s, u"python3 a.py x.safetensors"_s,
        match(generic, u"x.safetensors"_s));
    row("a .bin file alone does not match", u"python3"_s, u"python3 a.py x.bin"_s, {});
    row("a .pt file as the last argument", u"python3"_s, u"train.py weights.pt"_s, {});
    row("a model in a flag goes before the file", u"python3"_s,
        u"python3 a.py x.ckpt --model owner/name"_s, match(generic, u"owner/name"_s));

    QTest::newRow("a flag followed by blanks gives an empty model")
        << u"llama-server"_s << QStringList{u"llama-server"_s, u"--model"_s, u"  "_s}
        << match(llamaCpp, u""_s);
    QTest::newRow("fragments are sought across the blank between two arguments")
        << u"python3"_s << QStringList{u"a.pt"_s, u"b"_s} << match(generic);
    QTest::newRow("a megabyte of one argument")
        << u"python3"_s << QStringList{u"python3"_s, QString(1 << 20, u'x') + u".gguf"_s}
        << match(generic, QString(1 << 20, u'x') + u".gguf"_s);
    QTest::newRow("4096 arguments") << u"python3"_s << (QStringList(4095, u"x"_s) << u"/m/y.gguf"_s)
                                    << match(generic, u"y.gguf"_s);
    QTest::newRow("newlines and control characters")
        << u"python3\n"_s << QStringList{u"a\nb"_s, u"\x01/m/\x02.gguf"_s}
        << match(generic, u"\x02.gguf"_s);
    QTest::newRow("an empty name") << QString() << QStringList{u"x.gguf"_s} << Result();
}

void TestAIProcessDetector::classifies()
{
    QFETCH(QString, name);
    QFETCH(QStringList, argv);
    QTEST(AIProcessDetector::classify(name, argv), "expected");
}

void TestAIProcessDetector::knowsRelevantNames_data()
{
    QTest::addColumn<bool>("relevant");
    for (const char *name :
         {"ollama", "llama-server", "koboldcpp", "whisper-cli", "mlx", "LM Studio", "lms", "Python",
          "ComfyUI", "sd-webui", "stable-diffusion", "forge", "AUTOMATIC1111", "vLLM", "torchrun",
          "huggingface-cli", "films"})
        QTest::newRow(name) << true;
    for (const char *name : {"main", "firefox", "node", "lm-studio", "", "pid 123"})
        QTest::newRow(name) << false;
}

void TestAIProcessDetector::knowsRelevantNames()
{
    QTEST(AIProcessDetector::nameLooksRelevant(QString::fromUtf8(QTest::currentDataTag())),
          "relevant");
}

void TestAIProcessDetector::findsModelsInFlags_data()
{
    QTest::addColumn<QStringList>("argv");
    QTest::addColumn<Model>("expected");
    const auto row = [](const char *title, const QStringList &argv, const Model &expected) {
        QTest::newRow(title) << argv << expected;
    };
    for (const char *flag :
         {"--model", "--model-path", "--model_path", "--model-id", "--model_id", "--ckpt",
          "--checkpoint", "--ckpt-path", "--ckpt_path", "--weights", "--lora", "--base-model"}) {
        const QString text = QString::fromLatin1(flag);
        row(qPrintable(text), {text, u"x"_s}, u"x"_s);
        row(qPrintable(text + u"="_s), {text + u"=x"_s}, u"x"_s);
    }
    row("no arguments", {}, {});
    row("a flag at the end", {u"a"_s, u"--model"_s}, {});
    row("flags in any case", {u"--MODEL"_s, u"/a/b/c"_s}, u"c"_s);
    row("a path behind the equals sign", {u"--model=/path/x.safetensors"_s}, u"x.safetensors"_s);
    row("the value keeps its case", {u"--Model=/Path/X.GGUF"_s}, u"X.GGUF"_s);
    row("only the first equals sign divides", {u"--model=a=b"_s}, u"a=b"_s);
    row("an empty value", {u"--model="_s}, u""_s);
    row("a value of blanks", {u"--model"_s, u" \t\n"_s}, u""_s);
    row("another flag is taken as a value", {u"--model"_s, u"--port"_s}, u"--port"_s);
    row("the first flag counts", {u"--lora"_s, u"a"_s, u"--model"_s, u"b"_s}, u"a"_s);
    row("a flag at the end gives way to an earlier one", {u"--model=a"_s, u"--ckpt"_s}, u"a"_s);
    row("a longer flag is another one", {u"--models"_s, u"a"_s}, {});
    row("-m with a path", {u"-m"_s, u"a/b/c"_s}, u"c"_s);
    row("-m with a model file", {u"-m"_s, u"X.GGUF"_s}, u"X.GGUF"_s);
    row("-m with a repository", {u"-m"_s, u"owner/name"_s}, u"owner/name"_s);
    row("-m with a word", {u"-m"_s, u"llama3"_s}, {});
    row("-m with a .pt file", {u"-m"_s, u"x.pt"_s}, {});
    row("-M is another flag", {u"-M"_s, u"a/b/c"_s}, {});
    row("-m at the end", {u"-m"_s}, {});
    row("a second -m after a module", {u"-m"_s, u"llama"_s, u"-m"_s, u"/m/x"_s}, u"x"_s);
    row("strict flags go before -m", {u"-m"_s, u"/m/x.gguf"_s, u"--model"_s, u"y"_s}, u"y"_s);
    row("-m goes before a model file", {u"a.gguf"_s, u"-m"_s, u"/m/x"_s}, u"x"_s);
    row("a model file, where no flag names one", {u"a"_s, u"/m/b.pth"_s}, u"b.pth"_s);
}

void TestAIProcessDetector::findsModelsInFlags()
{
    QFETCH(QStringList, argv);
    QTEST(AIProcessDetector::modelFromFlags(argv), "expected");
}

void TestAIProcessDetector::findsModelsInCheckpoints_data()
{
    QTest::addColumn<QStringList>("argv");
    QTest::addColumn<Model>("expected");
    QTest::newRow("none") << QStringList{} << Model();
    QTest::newRow("no model file") << QStringList{u"a"_s, u"x.pt"_s} << Model();
    QTest::newRow("the first") << QStringList{u"a"_s, u"/m/b.bin"_s, u"c.gguf"_s}
                               << Model(u"b.bin"_s);
    QTest::newRow("in any case") << QStringList{u"a/B.SafeTensors"_s} << Model(u"B.SafeTensors"_s);
    QTest::newRow("a suffix alone") << QStringList{u".ckpt"_s} << Model(u".ckpt"_s);
    QTest::newRow("a suffix within") << QStringList{u"a.gguf.txt"_s} << Model();
}

void TestAIProcessDetector::findsModelsInCheckpoints()
{
    QFETCH(QStringList, argv);
    QTEST(AIProcessDetector::modelFromCheckpoint(argv), "expected");
}

void TestAIProcessDetector::findsTheModelOfOllama_data()
{
    QTest::addColumn<QStringList>("argv");
    QTest::addColumn<Model>("expected");
    QTest::newRow("behind run") << QStringList{u"ollama"_s, u"run"_s, u"a/b/c"_s}
                                << Model(u"a/b/c"_s);
    QTest::newRow("unchanged") << QStringList{u"run"_s, u" x "_s} << Model(u" x "_s);
    QTest::newRow("a flag goes before")
        << QStringList{u"ollama"_s, u"run"_s, u"x"_s, u"--model"_s, u"/m/y"_s} << Model(u"y"_s);
    QTest::newRow("run in another case") << QStringList{u"ollama"_s, u"Run"_s, u"x"_s} << Model();
    QTest::newRow("the first run, even if the last is meant")
        << QStringList{u"run"_s, u"run"_s, u"x"_s} << Model(u"run"_s);
    QTest::newRow("run at the end") << QStringList{u"ollama"_s, u"run"_s} << Model();
    QTest::newRow("no arguments") << QStringList{} << Model();
}

void TestAIProcessDetector::findsTheModelOfOllama()
{
    QFETCH(QStringList, argv);
    QTEST(AIProcessDetector::ollamaModel(argv), "expected");
}

void TestAIProcessDetector::knowsModules_data()
{
    QTest::addColumn<QStringList>("argv");
    QTest::addColumn<bool>("expected");
    QTest::newRow("-m") << QStringList{u"python3"_s, u"-m"_s, u"mlx"_s} << true;
    QTest::newRow("--module") << QStringList{u"--module"_s, u"mlx"_s} << true;
    QTest::newRow("a submodule") << QStringList{u"-m"_s, u"mlx.core"_s} << false;
    QTest::newRow("another case") << QStringList{u"-m"_s, u"MLX"_s} << false;
    QTest::newRow("another flag") << QStringList{u"-M"_s, u"mlx"_s} << false;
    QTest::newRow("the flag at the end") << QStringList{u"mlx"_s, u"-m"_s} << false;
    QTest::newRow("a later flag") << QStringList{u"-m"_s, u"x"_s, u"-m"_s, u"mlx"_s} << true;
    QTest::newRow("no arguments") << QStringList{} << false;
}

void TestAIProcessDetector::knowsModules()
{
    QFETCH(QStringList, argv);
    QTEST(AIProcessDetector::hasModule(argv, u"mlx"_s), "expected");
}

void TestAIProcessDetector::makesBasenames_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    QTest::newRow("empty") << u""_s << u""_s;
    QTest::newRow("blanks") << u" \t\r\n"_s << u""_s;
    QTest::newRow("a word, trimmed") << u" llama3\n"_s << u"llama3"_s;
    QTest::newRow("a repository stays whole")
        << u"mlx-community/Qwen2-7B"_s << u"mlx-community/Qwen2-7B"_s;
    QTest::newRow("a file at the root") << u"/models/qwen.gguf"_s << u"qwen.gguf"_s;
    QTest::newRow("a folder at the root") << u"/models/qwen"_s << u"qwen"_s;
    QTest::newRow("three pieces") << u"a/b/c"_s << u"c"_s;
    QTest::newRow("two pieces with a model file") << u"models/x.GGUF"_s << u"x.GGUF"_s;
    QTest::newRow("the suffix is kept")
        << u"/models/llama-3-8b.Q4_K_M.gguf"_s << u"llama-3-8b.Q4_K_M.gguf"_s;
    QTest::newRow("one piece with a slash behind") << u"models/"_s << u"models"_s;
    QTest::newRow("two pieces with a slash behind") << u"owner/name/"_s << u"owner/name/"_s;
    QTest::newRow("doubled slashes") << u"owner//name"_s << u"owner//name"_s;
    QTest::newRow("one piece at the root") << u"/x"_s << u"x"_s;
    QTest::newRow("two pieces at the root") << u"/a/b"_s << u"b"_s;
    QTest::newRow("slashes alone") << u"//"_s << u"//"_s;
    QTest::newRow("relative to here") << u"./x"_s << u"./x"_s;
    QTest::newRow("blanks within") << u" /my models/a b "_s << u"a b"_s;
}

void TestAIProcessDetector::makesBasenames()
{
    QFETCH(QString, path);
    QTEST(AIProcessDetector::basename(path), "expected");
}

void TestAIProcessDetector::describesWorkloads()
{
    CommandLines lines{.byPid = {{7, {"Ollama", "run", "llama3"}}}};
    FactsCache cache;
    const auto workloads = detect(Records{{7, "Ollama", 300 * MiB}}, lines.reader(), cache);
    const std::vector<AIWorkload> expected{{.id = 7,
                                            .pid = 7,
                                            .processName = u"Ollama"_s,
                                            .framework = AIFramework::ollama,
                                            .model = u"llama3"_s,
                                            .memory = 300 * MiB,
                                            .startTime = 1}};
    QCOMPARE(workloads, expected);
}

void TestAIProcessDetector::examinesEightyProcesses()
{
    FactsCache cache;
    std::int32_t asked = 0;
    const auto ranking = [&asked](std::int32_t limit) {
        asked = limit;
        return Records();
    };
    AIProcessDetector::detectAll(ranking, identify, CommandLines().reader(), cache);
    QCOMPARE(asked, 80);
}

void TestAIProcessDetector::reports_data()
{
    QTest::addColumn<Records>("records");
    QTest::addColumn<QList<qint64>>("expected");
    QTest::addColumn<int>("reads");
    QTest::newRow("at 200 MiB exactly") << Records{{1, "python3", enough}} << QList<qint64>{1} << 1;
    QTest::newRow("a byte below 200 MiB")
        << Records{{1, "python3", enough - 1}} << QList<qint64>{} << 0;
    QTest::newRow("150 MiB") << Records{{1, "python3", 150 * MiB}} << QList<qint64>{} << 0;
    QTest::newRow("with an irrelevant name")
        << Records{{1, "main", enough}} << QList<qint64>{} << 0;
    QTest::newRow("with a relevant name, but no rule matches")
        << Records{{1, "vllm", enough}} << QList<qint64>{} << 1;
    QTest::newRow("without a number") << Records{{{}, "python3", enough}} << QList<qint64>{} << 0;
    QTest::newRow("without a name") << Records{{1, {}, enough}} << QList<qint64>{} << 0;
    QTest::newRow("without memory") << Records{{1, "python3", {}}} << QList<qint64>{} << 0;
    QTest::newRow("by its name, its arguments unreadable")
        << Records{{99, "ollama", enough}} << QList<qint64>{99} << 1;
    QTest::newRow("an interpreter, its arguments unreadable")
        << Records{{99, "python3", enough}} << QList<qint64>{} << 1;
    QTest::newRow("no processes") << Records{} << QList<qint64>{} << 0;
}

void TestAIProcessDetector::reports()
{
    QFETCH(Records, records);
    QFETCH(int, reads);
    CommandLines lines{.byPid = {{1, {"python3", "-m", "mlx_lm.server"}}}};
    FactsCache cache;
    QTEST(pids(detect(records, lines.reader(), cache)), "expected");
    QCOMPARE(lines.reads.size(), static_cast<std::size_t>(reads));
}

void TestAIProcessDetector::sortsByMemoryAndKeepsTheOrderOfEqualOnes()
{
    CommandLines lines;
    FactsCache cache;
    const Records records{{5, "ollama", enough},       {2, "lms", enough},
                          {9, "whisper", 900 * MiB},   {1, "koboldcpp", enough},
                          {3, "llama-cli", 901 * MiB}, {4, "firefox", 950 * MiB}};
    QCOMPARE(pids(detect(records, lines.reader(), cache)), (QList<qint64>{3, 9, 5, 2, 1}));

    // Enough, and in no particular order, that an unstable sort would show.
    Records equal;
    QList<qint64> order;
    for (std::int32_t i = 1; i <= 40; ++i) {
        equal.push_back({i * 7 % 41, "ollama", enough});
        order.append(i * 7 % 41);
    }
    QCOMPARE(pids(detect(equal, lines.reader(), cache)), order);
}

void TestAIProcessDetector::readsArgumentsOnce()
{
    CommandLines lines{.byPid = {{7, {"ollama", "run", "a"}}}};
    FactsCache cache;
    const Records records{{7, "ollama", enough}};
    for (int pass = 0; pass < 3; ++pass)
        QCOMPARE(detect(records, lines.reader(), cache).at(0).model, Model(u"a"_s));
    QCOMPARE(lines.reads, std::vector<std::int32_t>{7});
}

void TestAIProcessDetector::keepsTheArgumentsOfTheFirstSighting()
{
    // Whatever the process calls itself later.
    CommandLines lines{.byPid = {{7, {"ollama", "run", "a"}}}};
    FactsCache cache;
    detect(Records{{7, "ollama", enough}}, lines.reader(), cache);
    lines.byPid[7] = {"llama-server", "-m", "/m/b.gguf"};
    const auto workloads = detect(Records{{7, "llama-server", enough}}, lines.reader(), cache);
    QCOMPARE(workloads.at(0).framework, AIFramework::llamaCpp);
    QCOMPARE(workloads.at(0).model, Model());
    QCOMPARE(lines.reads.size(), std::size_t(1));
}

void TestAIProcessDetector::doesNotRetryAFailedRead()
{
    CommandLines lines;
    FactsCache cache;
    const Records records{{7, "ollama", enough}};
    detect(records, lines.reader(), cache);
    lines.byPid[7] = {"ollama", "run", "a"};
    QCOMPARE(detect(records, lines.reader(), cache).at(0).model, Model());
    QCOMPARE(lines.reads.size(), std::size_t(1));
}

void TestAIProcessDetector::readsThoseOfAnotherProcessWithTheSameNumber()
{
    CommandLines lines{.byPid = {{7, {"ollama", "run", "a"}}}};
    FactsCache cache;
    const auto ranking = [](std::int32_t) { return Records{{7, "ollama", enough}}; };
    AIProcessDetector::detectAll(ranking, identify, lines.reader(), cache);
    lines.byPid[7] = {"ollama", "run", "b"};
    const auto later = [](std::int32_t pid) {
        return std::optional(ProcessIdentity{.pid = pid, .startTime = 2});
    };
    const auto workloads = AIProcessDetector::detectAll(ranking, later, lines.reader(), cache);
    QCOMPARE(workloads.at(0).model, Model(u"b"_s));
}

void TestAIProcessDetector::asksAgainWhatCouldNotBeAskedFor()
{
    FactsCache cache;
    const Records records{{7, "ollama", enough}};
    const auto refuse = [](const ProcessIdentity &) { return std::optional<ArgumentFacts>(); };
    QCOMPARE(detect(records, refuse, cache).at(0).model, Model());
    CommandLines lines{.byPid = {{7, {"ollama", "run", "a"}}}};
    QCOMPARE(detect(records, lines.reader(), cache).at(0).model, Model(u"a"_s));
}

void TestAIProcessDetector::reportsByItsNameAProcessThatHasJustEnded()
{
    FactsCache cache;
    CommandLines lines;
    const auto workloads = AIProcessDetector::detectAll(
        [](std::int32_t) {
            return Records{{7, "ollama", enough}};
        },
        [](std::int32_t) { return std::optional<ProcessIdentity>(); }, lines.reader(), cache);
    QCOMPARE(pids(workloads), QList<qint64>{7});
    QVERIFY(lines.reads.empty());
}

void TestAIProcessDetector::keepsOfArgumentsOnlyWhatTheRulesMakeOfThem()
{
    const auto facts = [](std::vector<std::string> argv) {
        return AIProcessDetector::takeFacts(ArgumentRecord{.argv = std::move(argv)});
    };
    QCOMPARE(AIProcessDetector::takeFacts({}), ArgumentFacts());
    QCOMPARE(facts({}), ArgumentFacts());
    QCOMPARE(facts({"python3", "--token", "secret", "-m", "vllm"}),
             (ArgumentFacts{.interpreted = Match{AIFramework::vllm, {}}}));
    const Model model = u"b.gguf"_s;
    QCOMPARE(facts({"main", "-m", "/a/b.gguf"}),
             (ArgumentFacts{.namesGGUF = true,
                            .model = model,
                            .ollamaModel = model,
                            .interpreted = Match{AIFramework::generic, model}}));
    // Longer than any path.
    const Model kept = QString(4096, u'x');
    QCOMPARE(facts({"ollama", "run", std::string(4096, 'x')}).ollamaModel, kept);
    QCOMPARE(facts({"ollama", "run", std::string(5000, 'x')}).ollamaModel, kept);
    QCOMPARE(facts({"vllm", "--model", std::string(5000, 'x')}),
             (ArgumentFacts{.model = kept,
                            .ollamaModel = kept,
                            .interpreted = Match{AIFramework::vllm, kept}}));
    const auto recognised = AIProcessDetector::takeFacts(
        ArgumentRecord{.argv = {"llama-server", "-m", std::string(5000, 'x') + ".gguf"}},
        u"llama-server"_s);
    QCOMPARE(recognised.recognised.value().model, kept);
    QCOMPARE(recognised.recognised->details.path, kept);
}

void TestAIProcessDetector::readsWithoutLockingTheCache()
{
    // Another caller uses the cache while the arguments are read; the later store wins.
    FactsCache cache;
    const auto read = [&cache](const ProcessIdentity &process) {
        cache.remember(process, {.ollamaModel = u"other"_s});
        return std::optional(ArgumentFacts{.ollamaModel = u"own"_s});
    };
    const auto workloads = detect(Records{{7, "ollama", enough}}, read, cache);
    QCOMPARE(workloads.at(0).model, Model(u"own"_s));
    QCOMPARE(cache.find(*identify(7)), std::optional(ArgumentFacts{.ollamaModel = u"own"_s}));
}

void TestAIProcessDetector::forgetsProcessesThatLeftTheRanking()
{
    CommandLines lines{.byPid = {{7, {"ollama", "run", "a"}}}};
    FactsCache cache;
    const Records records{{7, "ollama", enough}};
    detect(records, lines.reader(), cache);
    detect(Records{{8, "firefox", enough}}, lines.reader(), cache);
    QVERIFY(!cache.find(*identify(7)));
    lines.byPid[7] = {"ollama", "run", "b"};
    QCOMPARE(detect(records, lines.reader(), cache).at(0).model, Model(u"b"_s));

    // A record that cannot be read does not count as seen.
    detect(Records{{7, {}, enough}}, lines.reader(), cache);
    QVERIFY(!cache.find(*identify(7)));
}

void TestAIProcessDetector::remembersProcessesThatShrankButStayed()
{
    CommandLines lines{.byPid = {{7, {"ollama", "run", "a"}}}};
    FactsCache cache;
    detect(Records{{7, "ollama", enough}}, lines.reader(), cache);
    detect(Records{{7, "ollama", MiB}}, lines.reader(), cache);
    QVERIFY(cache.find(*identify(7)));
    detect(Records{{7, {}, MiB}}, lines.reader(),
           cache); // Not named, too light.
    QVERIFY(cache.find(*identify(7)));
}

QTEST_APPLESS_MAIN(TestAIProcessDetector)
#include "tst_AIProcessDetector.moc"
