#pragma once

#include "chip/ChipSnapshot.h"
#include "gpu/GPUWatch.h"
#include "platform/BootClock.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace corvane {

/// Takes snapshots of what the kernel tells of the chip. Main thread.
class ChipReader {
public:
    /// What to read; the rest is not touched.
    struct Parts {
        bool cpu = true;
        bool gpu = true;
        bool energy = true;
    };

    ChipReader(const std::string &root, Parts parts, std::shared_ptr<GPUWatch> gpus,
               std::function<double()> clock = secondsSinceBoot);
    ~ChipReader();

    /// Whether any of the parts exists on this machine.
    bool hasAnything() const;

    ChipSnapshot read();

    const std::vector<CPUClusterStates> &clusters() const;

private:
    struct Sources;
    std::unique_ptr<Sources> m_sources;
};

} // namespace corvane
