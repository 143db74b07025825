#pragma once

#include "processes/AIFramework.h"

#include <QColor>

namespace corvane {

/// The colour of a family of inference programs, the same everywhere.
QColor frameworkColor(AIFramework framework);

} // namespace corvane
