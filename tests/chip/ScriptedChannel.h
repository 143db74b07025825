#pragma once

#include "chip/ReportingChannel.h"

#include <QMetaType>

#include <limits>
#include <utility>
#include <vector>

namespace corvane::test {

/// A reporting channel that owns its texts, for scripts and tables.
struct ScriptedChannel {
    std::string group = {};
    std::string subgroup = {};
    std::string name = {};
    std::optional<std::string> unit = {};
    std::int64_t value = std::numeric_limits<std::int64_t>::min();
    std::vector<std::pair<std::string, std::int64_t>> states = {};

    /// Calls `visit` as a bridge does: with views that hold until it returns.
    template <typename Visitor>
    void show(Visitor visit) const
    {
        std::vector<ChannelState> views;
        for (const auto &[state, residency] : states)
            views.push_back({state, residency});
        visit(ReportingChannel{group, subgroup, name, unit, value, views});
    }
};

using ScriptedChannels = std::vector<ScriptedChannel>;
using ScriptedStates = std::vector<std::pair<std::string, std::int64_t>>;

inline ScriptedChannel energy(std::string name, std::int64_t value,
                              std::optional<std::string> unit = "mJ")
{
    return {.group = "Energy Model", .name = std::move(name), .unit = unit, .value = value};
}

inline ScriptedChannel gpu(ScriptedStates states)
{
    return {.group = "GPU Stats",
            .subgroup = "GPU Performance States",
            .name = "GPUPH",
            .unit = "24Mticks",
            .states = std::move(states)};
}

inline ScriptedChannel cpu(std::string name, ScriptedStates states)
{
    return {.group = "CPU Stats",
            .subgroup = "CPU Complex Performance States",
            .name = std::move(name),
            .unit = "24Mticks",
            .states = std::move(states)};
}

} // namespace corvane::test

Q_DECLARE_METATYPE(corvane::test::ScriptedChannels)
