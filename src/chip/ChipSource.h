#pragma once

#include "platform/BootClock.h"
#include "records/ChipReading.h"

#include <functional>
#include <memory>
#include <optional>

namespace corvane {

/// Returns the chip reading of a tick; absent when the chip could not be read. Empty: a Mac without
/// anything to read. A Linux machine always has a reading, whose coverage says what it tells.
/// Copies share one sampler; used on one thread.
using ChipSource = std::function<std::optional<ChipReading>()>;

class GPUHandOver;

/// Opens this machine's chip sampler. `now` returns monotonic seconds, sleep included; a test steps
/// its own. `gpus` receives the GPUs that there are, on a system that lists them one by one; may be
/// null.
ChipSource openChipSource(std::function<double()> now = secondsSinceBoot,
                          const std::shared_ptr<GPUHandOver> &gpus = nullptr);

} // namespace corvane
