#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace corvane {

/// A group of reporting channels to subscribe to. A request without a group is skipped.
struct ChannelGroupRequest {
    std::optional<std::string> group = {};
    std::optional<std::string> subgroup = {}; ///< Absent: every subgroup.
};

/// One state of a state channel with the time spent in it, in ticks of the channel's own clock.
struct ChannelState {
    std::string_view name = {};
    std::int64_t residency = 0; ///< Negative: not valid.
};

/// One channel of a difference between two samples. Views into it hold until the visitor returns.
struct ReportingChannel {
    std::string_view group = {};
    std::string_view subgroup = {}; ///< Empty when the channel has none.
    std::string_view name = {};
    std::optional<std::string_view> unit = {};
    std::int64_t value = 0; ///< Counter of a simple channel; the least integer on any other.
    std::span<const ChannelState> states = {}; ///< Empty unless it is a state channel.
};

/// A subscription to the chip's reporting channels: takes raw samples, forms their difference and
/// walks it. Knows nothing of which channels matter. On a Mac it stands on the system's reporting
/// library, opened at run time; on Linux it offers the same channels from what the kernel keeps.
///
/// Owned by the power sampler; not thread-safe. Every failure is a null result.
class IOReportBridge {
public:
    /// A raw sample, or the difference of two; what is in it is the system source's business.
    struct Sample;
    struct SampleDeleter {
        void operator()(Sample *sample) const;
    };
    using SamplePtr = std::unique_ptr<Sample, SampleDeleter>;

    /// Null when no request yields a channel, or when this system has no such channels. `root` is
    /// the folder below which kernel files are read (Linux).
    static std::unique_ptr<IOReportBridge> withChannelGroups(
        const std::vector<ChannelGroupRequest> &requests, const std::string &root = "/");

    ~IOReportBridge();

    SamplePtr takeSample();

    /// Null when either side is missing.
    SamplePtr delta(const Sample *from, const Sample *to) const;

    /// Visits every channel of a difference in the system's order; does nothing without one.
    void iterate(const Sample *delta,
                 const std::function<void(const ReportingChannel &)> &visit) const;

private:
    struct Subscription;
    explicit IOReportBridge(std::unique_ptr<Subscription> subscription);
    std::unique_ptr<Subscription> m_subscription;
};

} // namespace corvane
