#pragma once

#include "chip/IOReportBridge.h"

#include <functional>
#include <memory>

namespace corvane {

using ChannelVisitor = std::function<void(const ReportingChannel &)>;

/// A subscription to reporting channels as the power sampler uses it: two functions over a bridge,
/// or over a test's script.
struct ChannelSource {
    using Sample = std::shared_ptr<const void>; ///< Null: it could not be taken.

    std::function<Sample()> takeSample = {};

    /// Visits every channel of the difference; false when there is none.
    std::function<bool(const Sample &from, const Sample &to, const ChannelVisitor &visit)>
        visitDelta = {};
};

} // namespace corvane
