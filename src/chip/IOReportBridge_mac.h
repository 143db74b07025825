#pragma once

#include "chip/ReportingChannel.h"
#include "threads/OneThread.h"

#include <functional>
#include <memory>
#include <vector>

namespace corvane {

/// A subscription to the reporting channels of a Mac's chip: takes raw samples, forms their
/// difference and walks it. Does not know which channels matter. The system's reporting library is
/// opened at run time.
///
/// Owned by the power sampler; used on one thread. Every failure is a null result.
class IOReportBridge {
public:
    /// A raw sample, or the difference of two.
    struct Sample;
    struct SampleDeleter {
        void operator()(Sample *sample) const;
    };
    using SamplePtr = std::unique_ptr<Sample, SampleDeleter>;

    /// Null when no request yields a channel, or when this machine has no such library.
    static std::unique_ptr<IOReportBridge> withChannelGroups(
        const std::vector<ChannelGroupRequest> &requests);

    ~IOReportBridge();

    SamplePtr takeSample();

    /// Null when either side is missing.
    SamplePtr delta(const Sample *from, const Sample *to) const;

    /// Visits every channel of a difference in the system's order; none without a difference.
    void iterate(const Sample *delta,
                 const std::function<void(const ReportingChannel &)> &visit) const;

private:
    struct Subscription;
    explicit IOReportBridge(std::unique_ptr<Subscription> subscription);
    std::unique_ptr<Subscription> m_subscription;
    OneThread m_thread = {};
};

} // namespace corvane
