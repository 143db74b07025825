#pragma once

#include "processes/AIWorkload.h"
#include "processes/ArgumentFacts.h"
#include "processes/ProcessBridge.h"

#include <QStringList>

#include <unordered_set>

namespace corvane {

class FactsCache;

/// Finds local AI inference among the heaviest processes, by their names and arguments alone. Safe
/// from any thread. A process whose arguments cannot be read is classified by its name.
class AIProcessDetector {
public:
    using Match = AIMatch;

    static constexpr std::int32_t processesExamined = 80;
    static constexpr std::uint64_t leastMemory = 200 << 20; ///< In bytes; lighter ones are skipped.

    /// The workloads among the first `processesExamined` of a ranking, largest first. A record
    /// below `leastMemory` needs no name, unless it is one of `onGPU`: these are examined whatever
    /// their footprint and place. The facts of a process are read once and kept while the
    /// process stays in the ranking.
    static std::vector<AIWorkload> detectAll(const ProcessRanking &ranking,
                                             const IdentityReader &identify,
                                             const FactsReader &readFacts, FactsCache &cache,
                                             const std::unordered_set<std::int64_t> &onGPU = {});

    /// The facts in arguments, which are overwritten: they may hold secrets. Empty facts where the
    /// arguments could not be read. A process with a name is recognised by all rules.
    static ArgumentFacts takeFacts(std::optional<ArgumentRecord> record, const QString &name = {},
                                   const FolderReader &folder = {});

    /// What a process is under its present name. Under another than that of its facts it is what
    /// the first rules say, or still what it was.
    static std::optional<Recognition> recognition(const QString &name, const ArgumentFacts &facts);

    /// Absent for a process that no rule matches. Pure, as are the functions below.
    static std::optional<Match> classify(const QString &name, const ArgumentFacts &facts);
    static std::optional<Match> classify(const QString &name, const QStringList &argv);

    /// What the rules make of the arguments, whatever the name of the process.
    static ArgumentFacts factsOf(const QStringList &argv);

    /// Whether a process of that name is worth classifying.
    static bool nameLooksRelevant(const QString &name);

    /// The model that the arguments name, from flags, else as `ollama run` takes it.
    static std::optional<QString> ollamaModel(const QStringList &argv);

    /// The model of the first model flag, else of the first model file.
    static std::optional<QString> modelFromFlags(const QStringList &argv);

    /// The first argument that is a model file.
    static std::optional<QString> modelFromCheckpoint(const QStringList &argv);

    /// Whether the arguments start that module of an interpreter.
    static bool hasModule(const QStringList &argv, const QString &module);

    /// The part of a path or model identifier that is worth showing.
    static QString basename(const QString &path);
};

} // namespace corvane
