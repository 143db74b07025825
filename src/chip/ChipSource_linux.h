#pragma once

#include "chip/ChipSource.h"

#include <string>

namespace corvane {

/// `openChipSource` for the Linux machine whose kernel files lie below `root`. NVIDIA's management
/// library is opened from `nvidiaLibrary`; an empty name: never.
ChipSource openChipSourceBelow(const std::string &root,
                               std::function<double()> now = secondsSinceBoot,
                               const std::string &nvidiaLibrary = {});

} // namespace corvane
