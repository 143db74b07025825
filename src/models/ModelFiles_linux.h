#pragma once

#include "models/ModelFiles.h"

namespace corvane {

/// The model files of processes whose kernel files lie below `root`.
ModelFiles linuxModelFiles(const std::string &root);

} // namespace corvane
