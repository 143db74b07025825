#pragma once

#include "processes/ProcessIdentity.h"
#include "processes/SecondRules.h"

#include <QString>

#include <functional>
#include <optional>

namespace corvane {

/// What was recognised in a process.
struct AIMatch {
    AIFramework framework = AIFramework::generic;
    std::optional<QString> model = {}; ///< Absent when none is named.

    friend bool operator==(const AIMatch &, const AIMatch &) = default;
};

/// What is kept of a process's arguments: what the rules need of them, whatever the process is
/// called, and nothing else. Those of a process whose arguments cannot be read are empty.
struct ArgumentFacts {
    bool namesGGUF = false;                  ///< A ".gguf" stands somewhere in them.
    std::optional<QString> model = {};       ///< Of model flags, else of a model file.
    std::optional<QString> ollamaModel = {}; ///< The same, else as `ollama run` takes it.
    std::optional<AIMatch> interpreted = {}; ///< What they make an interpreter run.
    QString name = {}; ///< What the process was called; empty: only the first rules were asked.
    std::optional<Recognition> recognised = {}; ///< What all rules made of it under that name.

    friend bool operator==(const ArgumentFacts &, const ArgumentFacts &) = default;
};

/// Reads the facts of a process. Absent when they could not be asked for this time.
using FactsReader = std::function<std::optional<ArgumentFacts>(const ProcessIdentity &)>;

} // namespace corvane
