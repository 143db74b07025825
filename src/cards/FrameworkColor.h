#pragma once

#include "processes/AIFramework.h"

#include <QColor>

namespace corvane {

/// The colour that a family of inference programs has everywhere.
QColor frameworkColor(AIFramework framework);

} // namespace corvane
