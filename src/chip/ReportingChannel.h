#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

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

} // namespace corvane
