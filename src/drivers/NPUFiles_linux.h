#pragma once

#include "drivers/APUMetrics.h"
#include "drivers/NPUDevice_linux.h"
#include "platform/KernelFile_linux.h"
#include "platform/KnownLately.h"
#include "records/ChipReading.h"

#include <cstdint>
#include <optional>

namespace corvane {

/// What was read of an NPU, and which quantities it tells.
struct NPUReading {
    NPUMetrics metrics = {};
    Coverage load = Coverage::unpublished;
    Coverage watts = Coverage::unpublished;
};

/// Reads an NPU: Intel's from its driver's files, which never wake it, AMD's from the measurements
/// of the APU that it is in. Owned by `FileGPUs`, used on one thread.
class NPUFiles {
public:
    explicit NPUFiles(const NPUDevice &device);

    const NPUDevice &device() const { return m_device; }

    /// `apu` is what the firmware of the machine's APU measures; null where there is none.
    NPUReading read(const APUMetrics *apu, double now);

private:
    NPUMetrics readFiles(double now);

    NPUDevice m_device;
    KernelFile m_busyTime;
    KernelFile m_memory;
    KernelFile m_clock;
    std::optional<std::uint64_t> m_lastBusy = {}; ///< Microseconds.
    double m_lastSeconds = 0;
    KnownLately m_load = {};
    KnownLately m_watts = {};
};

} // namespace corvane
