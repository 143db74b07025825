#pragma once

#include "chip/ChipSource.h"
#include "threads/BackgroundReader.h"

#include <chrono>
#include <string>

namespace corvane {

/// `openChipSource` for the Linux machine whose kernel files lie below `root`. NVIDIA's management
/// library is opened from `nvidiaLibrary`; an empty name: never. Drivers are asked on other
/// threads; by default each reading waits for what it asked for, as a test needs it.
ChipSource openChipSourceBelow(const std::string &root,
                               std::function<double()> now = secondsSinceBoot,
                               const std::string &nvidiaLibrary = {},
                               ReaderPatience patience = {.first = std::chrono::minutes(1),
                                                          .later = std::chrono::minutes(1)},
                               const std::shared_ptr<GPUHandOver> &gpus = nullptr);

} // namespace corvane
