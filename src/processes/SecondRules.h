#pragma once

#include "arguments/ModelDetails.h"
#include "arguments/ProgramRun.h"
#include "processes/AIFramework.h"

#include <cstdint>

namespace corvane {

/// What the rules make of a process.
struct Recognition {
    AIFramework framework = AIFramework::generic;
    std::optional<QString> model = {}; ///< As a person reads it; absent when nothing names it.
    ModelDetails details = {};
    /// A part of a server whose arguments name no model: those of an ancestor do.
    bool isPart = false;

    friend bool operator==(const Recognition &, const Recognition &) = default;
};

/// Recognises a process as today's runners look: the first rules (`AIProcessDetector::classify`),
/// then a table of vetoes and corrections of what they found, then a table of further rules where
/// they found nothing. Absent for a process that is no local inference. Pure but for `folder`.
std::optional<Recognition> recognise(const ProcessFacts &facts);

/// Whether a process of that name may be one that the first rules do not look at. Cheap.
bool nameMayBeARunner(const QString &name);

/// Whether that ancestor is the server of which a process is a part.
bool isServerOf(const Recognition &part, const Recognition &ancestor);

/// A part with the framework and the model of its server.
Recognition joined(const Recognition &part, const Recognition &server);

} // namespace corvane
