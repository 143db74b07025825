#include "processes/SecondRules.h"

#include "arguments/ModelArgument.h"
#include "processes/AIProcessDetector.h"
#include "processes/RuleVetoes.h"

#include <algorithm>
#include <array>
#include <utility>

namespace corvane {

namespace {

using namespace Qt::StringLiterals;
using enum AIFramework;

bool isOneOf(const QString &text, const auto &list)
{
    return std::ranges::find(list, text) != list.end();
}

/// A process with what it runs, as the rows of the tables look at it.
struct Candidate {
    const ProcessFacts &facts;
    ProgramRun run;

    /// The name of the folder of the script, in lower case: from its path, or the working folder.
    QString scriptFolder() const;
};

QString Candidate::scriptFolder() const
{
    if (run.script.isEmpty())
        return {};
    QString path = run.script;
    if (!path.startsWith(u'/') && facts.folder)
        path = facts.folder().value_or(QString()) + u'/' + path;
    QStringList pieces = path.split(u'/', Qt::SkipEmptyParts);
    pieces.removeAll(u"."_s);
    return pieces.size() < 2 ? QString() : pieces[pieces.size() - 2].toLower();
}

// ---- Corrections ----

bool startsOllamaRunner(const Candidate &candidate, const Recognition &found)
{
    const QString program = candidate.facts.argv.value(0);
    return (found.details.path && ollamaBlob(*found.details.path))
        || candidate.facts.executable.contains("/ollama/"_L1) || program.contains("/ollama/"_L1);
}

bool isDockerModelRunner(const Candidate &candidate, const Recognition &found)
{
    return (found.details.path && found.details.path->contains("/bundles/sha256/"_L1))
        || std::ranges::any_of(candidate.run.arguments, [](const QString &argument) {
               return argument.startsWith("inference-runner-"_L1);
           });
}

bool isRamaLama(const Candidate &, const Recognition &found)
{
    return found.details.path == u"/mnt/models/model.file"_s;
}

bool isLocalAI(const Candidate &candidate, const Recognition &)
{
    return candidate.run.runsNamedLike("llama-cpp-"_L1)
        && candidate.run.arguments.contains("--addr"_L1);
}

bool isKoboldScript(const Candidate &candidate, const Recognition &)
{
    return candidate.run.runs("koboldcpp.py"_L1);
}

bool isLlamaCppPython(const Candidate &candidate, const Recognition &)
{
    return candidate.run.module.startsWith("llama_cpp"_L1);
}

bool isSGLang(const Candidate &candidate, const Recognition &)
{
    return candidate.run.module.startsWith("sglang"_L1) || candidate.run.runs("sglang"_L1);
}

bool isTensorRTLLM(const Candidate &candidate, const Recognition &)
{
    return candidate.run.runs("trtllm-serve"_L1);
}

bool isInvokeAI(const Candidate &candidate, const Recognition &)
{
    return candidate.run.runsNamedLike("invokeai"_L1);
}

/// A match of the first rules that is another framework's.
struct Correction {
    AIFramework found;
    bool (*applies)(const Candidate &, const Recognition &);
    AIFramework right;
};

constexpr std::array corrections{
    Correction{llamaCpp, startsOllamaRunner, ollama},
    Correction{llamaCpp, isDockerModelRunner, dockerModelRunner},
    Correction{llamaCpp, isRamaLama, ramaLama},
    Correction{llamaCpp, isLocalAI, localAI},
    Correction{generic, isKoboldScript, koboldCpp},
    Correction{generic, isLlamaCppPython, llamaCpp},
    Correction{generic, isSGLang, sglang},
    Correction{generic, isTensorRTLLM, tensorRTLLM},
    Correction{generic, isInvokeAI, invokeAI},
};

// ---- Models ----

/// Where the model of a match stands in its arguments.
enum class ModelForm {
    none,     ///< Nowhere.
    flags,    ///< Behind a flag, or as a file.
    served,   ///< Behind "serve" or "run", else as by flags.
    first,    ///< The first argument, unless it is "serve" or an option; else as served.
    ancestor, ///< In the arguments of the server that started it.
    ownName,  ///< By flags, else in the file name of the program, which holds the weights.
};

void setModel(Recognition &found, const ModelArgument &argument)
{
    found.model = modelNameOf(argument);
    found.details.path = argument.isRepository ? std::nullopt : std::optional(argument.text);
}

void setName(Recognition &found, const QString &text)
{
    setModel(found, {.text = text});
}

void findServed(Recognition &found, const ProgramRun &run)
{
    for (const auto command : {"serve"_L1, "run"_L1}) {
        if (const auto argument = argumentBehind(run.arguments, command))
            return setName(found, *argument);
    }
}

void findFirst(Recognition &found, const ProgramRun &run)
{
    const QString first = run.arguments.value(0);
    if (!first.isEmpty() && !first.startsWith(u'-') && first != "serve"_L1)
        return setName(found, first);
    findServed(found, run);
}

/// "mistral-7b-instruct-v0.2.Q4_0" of the file name in which a llamafile holds its weights.
void findOwnName(Recognition &found, const ProcessFacts &facts)
{
    constexpr auto suffix = ".llamafile"_L1;
    for (const QString &path : {facts.argv.value(0), facts.executable, facts.name}) {
        const QString file = path.sliced(path.lastIndexOf(u'/') + 1);
        if (file.endsWith(suffix, Qt::CaseInsensitive) && file.size() > suffix.size()) {
            found.model = file.chopped(suffix.size());
            return;
        }
    }
}

void findModel(Recognition &found, const Candidate &candidate, ModelForm form)
{
    found.isPart = form == ModelForm::ancestor;
    if (form == ModelForm::none || form == ModelForm::ancestor)
        return;
    const auto argument = modelArgument(candidate.facts.argv);
    const bool isPositional = form == ModelForm::served || form == ModelForm::first;
    if (argument && !isPositional)
        return setModel(found, *argument);
    if (form == ModelForm::served)
        findServed(found, candidate.run);
    if (form == ModelForm::first)
        findFirst(found, candidate.run);
    if (form == ModelForm::ownName)
        findOwnName(found, candidate.facts);
    if (!found.model && argument)
        setModel(found, *argument);
}

/// The alias of a llama.cpp server, where it says more than the file that the arguments name.
void preferAlias(Recognition &found, const QStringList &argv)
{
    constexpr std::array servers{llamaCpp, dockerModelRunner, ramaLama};
    if (std::ranges::find(servers, found.framework) == servers.end())
        return;
    const auto alias = aliasArgument(argv);
    if (alias && !alias->trimmed().isEmpty()
        && (!found.model || saysNothing(*found.model) || alias->contains(u'/')))
        found.model = alias->trimmed();
}

bool isAdapter(const QString &model, const QStringList &argv)
{
    for (qsizetype i = 0; i < argv.size(); ++i) {
        const bool follows = argv[i] == "--lora"_L1 && i + 1 < argv.size();
        const QString value = follows          ? argv[i + 1]
            : argv[i].startsWith("--lora="_L1) ? argv[i].sliced(7)
                                               : QString();
        if (!value.isEmpty() && AIProcessDetector::basename(value) == model)
            return true;
    }
    return false;
}

/// The model of a first rule's match, with the argument in which it stands. What the first rule
/// named stays, unless its argument says more.
void refineModel(Recognition &found, const Candidate &candidate)
{
    const QStringList &argv = candidate.facts.argv;
    const auto argument = modelArgument(argv);
    const bool isSame =
        argument && found.model && AIProcessDetector::basename(argument->text) == *found.model;
    const bool isBetter =
        argument && (!found.model || argument->isRepository || isAdapter(*found.model, argv));
    if (isSame || isBetter)
        setModel(found, *argument);
    else if (!argument && found.model && isAdapter(*found.model, argv))
        found.model.reset();
}

/// `ollama run --nowordwrap llama3.2`
void refineOllama(Recognition &found, const Candidate &candidate)
{
    if (candidate.run.arguments.value(0) == "run"_L1 && !found.details.path)
        found.model = argumentBehind(candidate.run.arguments, "run"_L1);
}

// ---- First rules, as corrected ----

std::optional<Recognition> correctedMatch(const Candidate &candidate)
{
    const ProcessFacts &facts = candidate.facts;
    const bool isTorch = candidate.run.name == "pt_main_thread"_L1;
    const QString name = isTorch ? u"python"_s : facts.name;
    if (!AIProcessDetector::nameLooksRelevant(name))
        return std::nullopt;
    const auto match = AIProcessDetector::classify(name, facts.argv);
    if (!match || isVetoed(candidate.run, facts.argv, match->framework))
        return std::nullopt;

    Recognition found{.framework = match->framework, .model = match->model};
    if (found.framework == lmStudio)
        return found; // Its command lines carry no model.
    refineModel(found, candidate);
    for (const Correction &row : corrections) {
        if (row.found == found.framework && row.applies(candidate, found)) {
            found.framework = row.right;
            break;
        }
    }
    if (found.framework == ollama)
        refineOllama(found, candidate);
    if (found.framework == vllm && !found.model)
        findServed(found, candidate.run);
    return found;
}

// ---- Further rules ----

enum class How { is, startsWith };

/// One way in which a runner looks. All that a row names must hold.
struct SecondRule {
    How how;
    QLatin1StringView mark;         ///< Name of the process, its program, module or script.
    QLatin1StringView command = {}; ///< The first argument behind it; empty: any.
    QLatin1StringView folder = {};  ///< How the name of the script's folder begins; empty: any.
    AIFramework framework = generic;
    ModelForm model = ModelForm::flags;
};

constexpr auto any = QLatin1StringView();

constexpr std::array secondRules{
    SecondRule{How::is, "llama"_L1, "serve"_L1, any, llamaCpp, ModelForm::flags},
    SecondRule{How::is, "llama"_L1, "server"_L1, any, llamaCpp, ModelForm::flags},
    SecondRule{How::is, "llama"_L1, "cli"_L1, any, llamaCpp, ModelForm::flags},
    SecondRule{How::is, "llama"_L1, "run"_L1, any, llamaCpp, ModelForm::served},
    SecondRule{How::startsWith, "llama_cpp.server"_L1, any, any, llamaCpp, ModelForm::flags},
    SecondRule{How::startsWith, "vllm::"_L1, any, any, vllm, ModelForm::ancestor},
    SecondRule{How::is, "vllm"_L1, any, any, vllm, ModelForm::served},
    SecondRule{How::startsWith, "sglang::"_L1, any, any, sglang, ModelForm::ancestor},
    SecondRule{How::is, "sglang"_L1, any, any, sglang, ModelForm::served},
    SecondRule{How::startsWith, "sglang."_L1, any, any, sglang, ModelForm::flags},
    SecondRule{How::is, "text-generation-launcher"_L1, any, any, tgi, ModelForm::flags},
    SecondRule{How::is, "text-generation-server"_L1, any, any, tgi, ModelForm::served},
    SecondRule{How::is, "text-generation-router"_L1, any, any, tgi, ModelForm::ancestor},
    SecondRule{How::is, "llmworker.js"_L1, any, any, lmStudio, ModelForm::none},
    SecondRule{How::is, "llmster"_L1, any, any, lmStudio, ModelForm::none},
    SecondRule{How::is, "lm-studio"_L1, any, any, lmStudio, ModelForm::none},
    SecondRule{How::startsWith, "mlx_lm."_L1, any, any, mlx, ModelForm::flags},
    SecondRule{How::startsWith, "mlx_vlm."_L1, any, any, mlx, ModelForm::flags},
    SecondRule{How::is, "mlx_lm"_L1, any, any, mlx, ModelForm::flags},
    SecondRule{How::is, "mlx_vlm"_L1, any, any, mlx, ModelForm::flags},
    SecondRule{How::is, "main.py"_L1, any, "comfyui"_L1, comfyUI, ModelForm::flags},
    SecondRule{How::is, "main.py"_L1, any, "tabbyapi"_L1, tabbyAPI, ModelForm::flags},
    SecondRule{How::is, "start.py"_L1, any, "tabbyapi"_L1, tabbyAPI, ModelForm::flags},
    SecondRule{How::is, "server.py"_L1, any, "text-generation-webui"_L1, textGenerationWebUI,
               ModelForm::flags},
    SecondRule{How::is, "launch.py"_L1, any, "stable-diffusion-webui"_L1, sdWebUI,
               ModelForm::flags},
    SecondRule{How::is, "launch.py"_L1, any, "sd-webui"_L1, sdWebUI, ModelForm::flags},
    SecondRule{How::is, "koboldcpp.py"_L1, any, any, koboldCpp, ModelForm::flags},
    SecondRule{How::is, "local-ai"_L1, any, any, localAI, ModelForm::none},
    SecondRule{How::is, "lemond"_L1, any, any, lemonade, ModelForm::flags},
    SecondRule{How::is, "lemonade-server"_L1, any, any, lemonade, ModelForm::served},
    SecondRule{How::is, "lemonade-router"_L1, any, any, lemonade, ModelForm::flags},
    SecondRule{How::is, "flm"_L1, any, any, fastFlowLM, ModelForm::served},
    SecondRule{How::is, "inference.service.agent"_L1, any, any, foundryLocal, ModelForm::none},
    SecondRule{How::is, "mistralrs-server"_L1, any, any, mistralRs, ModelForm::flags},
    SecondRule{How::is, "mistralrs"_L1, any, any, mistralRs, ModelForm::flags},
    SecondRule{How::is, "trtllm-serve"_L1, any, any, tensorRTLLM, ModelForm::first},
    SecondRule{How::is, "mlc_llm"_L1, "serve"_L1, any, mlcLLM, ModelForm::served},
    SecondRule{How::is, "mlc_llm"_L1, "chat"_L1, any, mlcLLM, ModelForm::flags},
    SecondRule{How::is, "exo"_L1, any, any, exo, ModelForm::none},
    SecondRule{How::is, "llamafile"_L1, any, any, llamafile, ModelForm::ownName},
    SecondRule{How::is, "sd-server"_L1, any, any, stableDiffusionCpp, ModelForm::flags},
    SecondRule{How::is, "invokeai-web"_L1, any, any, invokeAI, ModelForm::none},
    SecondRule{How::is, "gpt4all"_L1, any, any, gpt4All, ModelForm::none},
    SecondRule{How::is, "whisper"_L1, any, any, whisper, ModelForm::flags},
};

bool holds(const SecondRule &row, const Candidate &candidate)
{
    const ProgramRun &run = candidate.run;
    const bool isRun = row.how == How::is ? run.runs(row.mark) : run.runsNamedLike(row.mark);
    return isRun && (row.command.isEmpty() || run.arguments.value(0) == row.command)
        && (row.folder.isEmpty() || candidate.scriptFolder().startsWith(row.folder));
}

/// The executable of a llamafile ends in that word; GPT4All's is called "chat".
std::optional<Recognition> byExecutable(const Candidate &candidate)
{
    const ProcessFacts &facts = candidate.facts;
    for (const QString &path : {facts.argv.value(0), facts.executable}) {
        if (path.endsWith(".llamafile"_L1, Qt::CaseInsensitive)) {
            Recognition found{.framework = llamafile};
            findModel(found, candidate, ModelForm::ownName);
            return found;
        }
        if (path.endsWith("/gpt4all/bin/chat"_L1, Qt::CaseInsensitive))
            return Recognition{.framework = gpt4All};
    }
    return std::nullopt;
}

/// What Python starts to share its work: its arguments name only the pipe to its parent.
bool isWorker(const ProgramRun &run)
{
    const QString code = run.arguments.value(0);
    return run.isInterpreter && run.module.isEmpty() && run.script.isEmpty()
        && code.startsWith("from multiprocessing."_L1) && !code.contains("resource_tracker"_L1);
}

std::optional<Recognition> bySecondRules(const Candidate &candidate)
{
    for (const SecondRule &row : secondRules) {
        if (!holds(row, candidate))
            continue;
        Recognition found{.framework = row.framework};
        findModel(found, candidate, row.model);
        return found;
    }
    if (auto found = byExecutable(candidate))
        return found;
    if (isWorker(candidate.run))
        return Recognition{.framework = generic, .isPart = true};
    return std::nullopt;
}

} // namespace

std::optional<Recognition> recognise(const ProcessFacts &facts)
{
    const Candidate candidate{facts, ProgramRun::of(facts)};
    auto found = correctedMatch(candidate);
    if (!found)
        found = bySecondRules(candidate);
    if (!found)
        return std::nullopt;
    preferAlias(*found, facts.argv);
    found->details.contextLength = contextArgument(facts.argv);
    return found;
}

bool nameMayBeARunner(const QString &name)
{
    const ProgramRun run{.name = name.toLower()};
    // Scripts that these run are recognised by their arguments; a name that was cut may hide an
    // ending.
    constexpr std::array hosts{"node"_L1, "chat"_L1, "pt_main_thread"_L1};
    return isOneOf(run.name, hosts) || run.name.endsWith(".llamafile"_L1) || isCut(run.name)
        || std::ranges::any_of(secondRules, [&run](const SecondRule &row) {
               return row.how == How::is ? run.runs(row.mark) : run.runsNamedLike(row.mark);
           });
}

bool isServerOf(const Recognition &part, const Recognition &ancestor)
{
    return !ancestor.isPart
        && (part.framework == AIFramework::generic || part.framework == ancestor.framework);
}

Recognition joined(const Recognition &, const Recognition &server)
{
    Recognition whole = server;
    whole.details.origin = ModelOrigin::server;
    return whole;
}

} // namespace corvane
