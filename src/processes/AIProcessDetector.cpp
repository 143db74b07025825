#include "processes/AIProcessDetector.h"

#include "arguments/ModelArgument.h"
#include "platform/ForeignText.h"
#include "platform/Wipe.h"
#include "processes/FactsCache.h"

#include <algorithm>
#include <array>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;

constexpr std::array relevantNameFragments{
    "ollama"_L1,           "llama"_L1, "kobold"_L1,        "whisper"_L1, "mlx"_L1,
    "lm studio"_L1,        "lms"_L1,   "python"_L1,        "comfy"_L1,   "sd-webui"_L1,
    "stable-diffusion"_L1, "forge"_L1, "automatic1111"_L1, "vllm"_L1,    "torch"_L1,
    "huggingface"_L1};

constexpr std::array strictModelFlags{"--model"_L1,      "--model-path"_L1, "--model_path"_L1,
                                      "--model-id"_L1,   "--model_id"_L1,   "--ckpt"_L1,
                                      "--checkpoint"_L1, "--ckpt-path"_L1,  "--ckpt_path"_L1,
                                      "--weights"_L1,    "--lora"_L1,       "--base-model"_L1};

/// May stand for a module as well as for a model.
constexpr QLatin1StringView ambiguousModelFlag = "-m"_L1;

template <typename Fragments>
bool containsAny(const QString &text, const Fragments &fragments)
{
    return std::ranges::any_of(fragments, [&text](auto part) { return text.contains(part); });
}

/// Longer arguments are not copied for it, since they may be secrets.
bool isStrictModelFlag(QStringView argument)
{
    constexpr qsizetype longestFlag = 12;
    if (argument.size() > longestFlag)
        return false;
    const QString lower = argument.toString().toLower();
    return std::ranges::find(strictModelFlags, lower) != strictModelFlags.end();
}

std::optional<QString> modelFromStrictFlags(const QStringList &argv)
{
    for (qsizetype i = 0; i < argv.size(); ++i) {
        if (i + 1 < argv.size() && isStrictModelFlag(argv[i]))
            return AIProcessDetector::basename(argv[i + 1]);
        const qsizetype equals = argv[i].indexOf(u'=');
        if (equals >= 0 && isStrictModelFlag(QStringView(argv[i]).first(equals)))
            return AIProcessDetector::basename(argv[i].sliced(equals + 1));
    }
    return std::nullopt;
}

std::optional<QString> modelFromAmbiguousFlag(const QStringList &argv)
{
    for (qsizetype i = 0; i + 1 < argv.size(); ++i) {
        const QString &next = argv[i + 1];
        if (argv[i] == ambiguousModelFlag && (isModelFileName(next) || next.contains(u'/')))
            return AIProcessDetector::basename(next);
    }
    return std::nullopt;
}

using Match = AIProcessDetector::Match;

/// What an interpreter runs. A fragment that contains another one of its rule ("/comfyui/" and
/// "comfyui") is left out.
std::optional<Match> classifyInterpreter(const QStringList &argv, const QString &all)
{
    const auto flagsModel = [&argv] { return AIProcessDetector::modelFromFlags(argv); };
    const auto checkpointModel = [&argv] { return AIProcessDetector::modelFromCheckpoint(argv); };

    constexpr std::array mlxMarks{"mlx_lm"_L1, "mlx_vlm"_L1, "mlx-examples"_L1, "/mlx/"_L1};
    if (containsAny(all, mlxMarks) || AIProcessDetector::hasModule(argv, u"mlx"_s))
        return Match{AIFramework::mlx, flagsModel()};
    if (all.contains("vllm"_L1))
        return Match{AIFramework::vllm, flagsModel()};
    if (all.contains("comfyui"_L1))
        return Match{AIFramework::comfyUI, checkpointModel()};
    constexpr std::array webUIMarks{"webui.py"_L1, "automatic1111"_L1, "forge"_L1, "sd-webui"_L1,
                                    "stable-diffusion"_L1};
    if (containsAny(all, webUIMarks))
        return Match{AIFramework::sdWebUI, checkpointModel()};
    if (containsAny(all, std::array{"transformers"_L1, "huggingface"_L1}))
        return Match{AIFramework::transformers, flagsModel()};
    // The blank behind ".pt" excludes longer words such as ".pth", and with them a last argument.
    constexpr std::array modelFileMarks{".gguf"_L1, ".safetensors"_L1, ".ckpt"_L1, ".pt "_L1,
                                        ".pth"_L1};
    if (containsAny(all, modelFileMarks))
        return Match{AIFramework::generic, flagsModel()};
    return std::nullopt;
}

/// A longer name is cut: only an argument that is no name can be longer than any path.
void shorten(std::optional<QString> &model)
{
    constexpr qsizetype longestModel = 4096; // Linux's PATH_MAX; a Mac's is shorter.
    if (model && model->size() > longestModel)
        model->truncate(longestModel);
}

void shorten(std::optional<Recognition> &found)
{
    if (!found)
        return;
    shorten(found->model);
    shorten(found->details.path);
}

/// Reads without holding the cache's lock: two callers may both read, and the later one wins.
ArgumentFacts factsOfProcess(const ProcessIdentity &process, const FactsReader &read,
                             FactsCache &cache)
{
    if (auto cached = cache.find(process))
        return *std::move(cached);
    auto facts = read(process);
    if (!facts)
        return {};
    cache.remember(process, *facts);
    return *std::move(facts);
}

} // namespace

std::vector<AIWorkload> AIProcessDetector::detectAll(const ProcessRanking &ranking,
                                                     const IdentityReader &identify,
                                                     const FactsReader &readFacts,
                                                     FactsCache &cache,
                                                     const std::unordered_set<std::int64_t> &onGPU)
{
    std::vector<AIWorkload> workloads;
    std::unordered_set<std::int64_t> seen;
    for (const auto &[pid, name, memory] : ranking(processesExamined)) {
        if (!pid || !memory)
            continue;
        const bool isHeavy = *memory >= leastMemory || onGPU.contains(*pid);
        if (!name && isHeavy)
            continue;
        seen.insert(*pid);
        if (!isHeavy)
            continue;
        const QString processName = foreignText(*name);
        if (!nameLooksRelevant(processName) && !nameMayBeARunner(processName))
            continue;
        const auto process = identify(*pid);
        const ArgumentFacts facts =
            process ? factsOfProcess(*process, readFacts, cache) : ArgumentFacts();
        auto found = recognition(processName, facts);
        if (found)
            workloads.push_back({.id = *pid,
                                 .pid = *pid,
                                 .processName = processName,
                                 .framework = found->framework,
                                 .model = std::move(found->model),
                                 .memory = *memory,
                                 .startTime = process ? process->startTime : 0,
                                 .details = std::move(found->details)});
    }
    cache.keepOnly(seen);
    std::ranges::stable_sort(workloads, std::greater(), &AIWorkload::memory);
    return workloads;
}

bool AIProcessDetector::nameLooksRelevant(const QString &name)
{
    return containsAny(name.toLower(), relevantNameFragments);
}

ArgumentFacts AIProcessDetector::takeFacts(std::optional<ArgumentRecord> record,
                                           const QString &name, const FolderReader &folder)
{
    if (!record)
        record.emplace();
    QStringList argv;
    argv.reserve(static_cast<qsizetype>(record->argv.size()));
    for (std::string &argument : record->argv) {
        argv.append(QString::fromStdString(argument));
        wipe(argument);
    }
    ArgumentFacts facts = factsOf(argv);
    shorten(facts.model);
    shorten(facts.ollamaModel);
    if (facts.interpreted)
        shorten(facts.interpreted->model);
    if (!name.isEmpty()) {
        facts.name = name;
        facts.recognised = recognise({name, QString::fromStdString(record->path), argv, folder});
        shorten(facts.recognised);
    }
    for (QString &argument : argv)
        wipe(argument); // What a fact shares with it stays: Qt gives the argument a copy then.
    return facts;
}

std::optional<Recognition> AIProcessDetector::recognition(const QString &name,
                                                          const ArgumentFacts &facts)
{
    if (facts.name == name && !name.isEmpty())
        return facts.recognised;
    if (auto match = nameLooksRelevant(name) ? classify(name, facts) : std::nullopt)
        return Recognition{.framework = match->framework, .model = std::move(match->model)};
    return facts.recognised;
}

ArgumentFacts AIProcessDetector::factsOf(const QStringList &argv)
{
    QString all = argv.join(u' ').toLower();
    ArgumentFacts facts{.namesGGUF = all.contains(".gguf"_L1),
                        .model = modelFromFlags(argv),
                        .ollamaModel = ollamaModel(argv),
                        .interpreted = classifyInterpreter(argv, all)};
    wipe(all);
    return facts;
}

std::optional<AIMatch> AIProcessDetector::classify(const QString &name, const QStringList &argv)
{
    return classify(name, factsOf(argv));
}

std::optional<AIMatch> AIProcessDetector::classify(const QString &name, const ArgumentFacts &facts)
{
    const QString lower = name.toLower();
    if (lower.contains("ollama"_L1))
        return Match{AIFramework::ollama, facts.ollamaModel};
    if (lower.contains("kobold"_L1))
        return Match{AIFramework::koboldCpp, facts.model};
    if (lower.startsWith("llama-"_L1) || lower == "llama.cpp"_L1)
        return Match{AIFramework::llamaCpp, facts.model};
    if (lower == "main"_L1)
        return facts.namesGGUF ? std::optional(Match{AIFramework::llamaCpp, facts.model})
                               : std::nullopt;
    if (lower.contains("whisper"_L1))
        return Match{AIFramework::whisperCpp, facts.model};
    // Its command lines do not carry the model.
    if (lower.contains("lm studio"_L1) || lower.contains("lms-"_L1) || lower == "lms"_L1)
        return Match{AIFramework::lmStudio, std::nullopt};
    if (lower.startsWith("python"_L1) || lower == "torch"_L1 || lower.contains("huggingface"_L1))
        return facts.interpreted;
    return std::nullopt;
}

std::optional<QString> AIProcessDetector::ollamaModel(const QStringList &argv)
{
    if (auto model = modelFromFlags(argv))
        return model;
    const qsizetype run = argv.indexOf("run"_L1);
    if (run < 0 || run + 1 == argv.size())
        return std::nullopt;
    return argv[run + 1];
}

std::optional<QString> AIProcessDetector::modelFromFlags(const QStringList &argv)
{
    if (auto model = modelFromStrictFlags(argv))
        return model;
    if (auto model = modelFromAmbiguousFlag(argv))
        return model;
    return modelFromCheckpoint(argv);
}

std::optional<QString> AIProcessDetector::modelFromCheckpoint(const QStringList &argv)
{
    const auto found = std::ranges::find_if(argv, isModelFileName);
    if (found == argv.end())
        return std::nullopt;
    return basename(*found);
}

bool AIProcessDetector::hasModule(const QStringList &argv, const QString &module)
{
    for (qsizetype i = 0; i + 1 < argv.size(); ++i) {
        if ((argv[i] == "-m"_L1 || argv[i] == "--module"_L1) && argv[i + 1] == module)
            return true;
    }
    return false;
}

QString AIProcessDetector::basename(const QString &path)
{
    return shortModelName(path);
}

} // namespace corvane
