#pragma once

#include "arguments/ProgramRun.h"
#include "processes/AIFramework.h"

namespace corvane {

/// Whether a match of the first rules does not hold: what runs is a developer's tool, the framework
/// is named only by a folder on the way to the interpreter, or the name only contains the mark of
/// another word. Pure.
bool isVetoed(const ProgramRun &run, const QStringList &argv, AIFramework framework);

} // namespace corvane
