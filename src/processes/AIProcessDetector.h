#pragma once

#include "processes/AIWorkload.h"
#include "processes/ProcessBridge.h"

#include <QStringList>

#include <span>

namespace corvane {

class ArgumentCache;

/// Finds local AI inference among the heaviest processes, by their names and arguments alone. Safe
/// from any thread. A process whose arguments cannot be read is judged by its name.
class AIProcessDetector {
public:
    /// What a name and arguments amount to.
    struct Match {
        AIFramework framework = AIFramework::generic;
        std::optional<QString> model = {};

        friend bool operator==(const Match &, const Match &) = default;
    };

    static constexpr std::int32_t processesLooked = 80;
    static constexpr std::uint64_t leastMemory = 200 << 20; ///< In bytes; lighter ones are not AI.

    using ArgumentReader = std::function<std::optional<ArgumentRecord>(std::int32_t pid)>;

    /// The workloads of this machine, largest first. Arguments are read once for a process and kept
    /// for the life of the program while it stays among those looked at.
    static std::vector<AIWorkload> detectAll(const std::string &root = "/");

    /// The same over a ranking that was made before. Records below `leastMemory` need no name.
    static std::vector<AIWorkload> detect(std::span<const ProcessRecord> heaviest,
                                          const ArgumentReader &readArguments,
                                          ArgumentCache &cache = processWideCache());

    static std::optional<Match> classify(const QString &name, const QStringList &argv);

    static bool nameLooksRelevant(const QString &name);
    static std::optional<QString> ollamaModel(const QStringList &argv);
    static std::optional<QString> modelFromFlags(const QStringList &argv);
    static std::optional<QString> modelFromCheckpoint(const QStringList &argv);
    static bool hasModule(const QStringList &argv, const QString &module);

    /// The part of a path or model identifier that is worth showing.
    static QString basename(const QString &path);

private:
    static ArgumentCache &processWideCache();
};

} // namespace corvane
