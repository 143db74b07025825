#pragma once

#include "processes/AIFramework.h"
#include "processes/ProgramRun.h"

#include <cstdint>

namespace corvane {

/// What the rules make of a process.
struct Recognition {
    AIFramework framework = AIFramework::generic;
    std::optional<QString> model = {}; ///< As a person reads it; absent when nothing names it.
    /// The argument that names the model, in full, where it may be a path.
    std::optional<QString> modelPath = {};
    std::optional<std::uint64_t> contextLength = {}; ///< Tokens that the command line asks for.
    /// A part of a server whose arguments name no model: that of the nearest ancestor holds.
    bool isPart = false;

    friend bool operator==(const Recognition &, const Recognition &) = default;
};

/// Recognises a process as today's runners look: the first rules (`AIProcessDetector::classify`),
/// then a table of vetoes and corrections of what they found, then a table of further rules where
/// they found nothing. Absent for a process that is no local inference. Pure but for `folder`.
std::optional<Recognition> recognise(const ProcessFacts &facts);

/// A part with the model of that ancestor. A part that is any interpreter's worker takes its
/// framework too.
Recognition joined(const Recognition &part, const Recognition &ancestor);

} // namespace corvane
