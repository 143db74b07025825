#pragma once

#include "chip/FrequencyTables.h"
#include "platform/BootClock.h"
#include "records/ChipReading.h"

#include <functional>

namespace corvane {

/// Gives the chip reading of a tick; nothing when there was none. Empty: no chip sampler here.
using ChipSource = std::function<std::optional<ChipReading>()>;

/// Opens this machine's chip sampler. To be called on the sampling thread alone. `root` is the
/// folder below which kernel files are read (Linux), `now` tells the seconds.
ChipSource openChipSource(const std::string &root = "/",
                          const FrequencyTables &frequencies = frequencyTables(),
                          std::function<double()> now = secondsSinceBoot);

} // namespace corvane
