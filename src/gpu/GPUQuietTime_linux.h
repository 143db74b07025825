#pragma once

#include "gpu/GPUDevices_linux.h"

#include <limits>
#include <optional>

namespace corvane {

/// How long one device has to be left alone to fall asleep. A device that never sleeps is looked up
/// again only a minute later: it may be idle for days, and is read all that time.
class GPUQuietTime {
public:
    /// Absent for a device that never sleeps.
    std::optional<double> secondsFor(const GPUDevice &device, double now);

private:
    double m_nextTry = -std::numeric_limits<double>::infinity();
};

} // namespace corvane
