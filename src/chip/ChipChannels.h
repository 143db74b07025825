#pragma once

#include "chip/ReportingChannel.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace corvane {

/// True for the channels of the "GPU Stats" group that hold the time the GPU spent in its
/// performance states. The group's other state channels describe limits of its clock: the boost
/// controller's and the thermal limiter's are never idle, so that an idle GPU would be two thirds
/// active.
bool isGPUPerformanceState(const ReportingChannel &channel);

/// The name under which the tables of frequencies know a CPU cluster. Chips whose slower clusters
/// are named "MCPU0" and "MCPU1" have no "ECPU": "MCPU0" becomes "ECPU0". `storage` holds a changed
/// name; any other name is returned as it is.
std::string_view clusterName(std::string_view name, std::string &storage);

/// The channels of a bridge as the power sampler counts them: of "GPU Stats" only the performance
/// states where the chip has any, and clusters under the names of the frequency tables.
///
/// `Bridge` is `IOReportBridge`, or a test's script. Owned by the power sampler, used on its
/// thread.
template <typename Bridge>
class ChipChannels {
public:
    /// Null without a bridge.
    static std::unique_ptr<ChipChannels> over(std::unique_ptr<Bridge> bridge)
    {
        return bridge ? std::unique_ptr<ChipChannels>(new ChipChannels(std::move(bridge)))
                      : nullptr;
    }

    auto takeSample() { return m_bridge->takeSample(); }

    template <typename Sample>
    auto delta(const Sample *from, const Sample *to) const
    {
        return m_bridge->delta(from, to);
    }

    template <typename Sample, typename Visit>
    void iterate(const Sample *delta, const Visit &visit)
    {
        lookForPerformanceStates(delta);
        m_bridge->iterate(delta, [&](ReportingChannel channel) {
            const bool isGPU = channel.group == "GPU Stats";
            const bool isCPU = channel.group == "CPU Stats";
            if (isGPU && m_hasPerformanceStates && !isGPUPerformanceState(channel))
                return;
            m_hasGPUStates = m_hasGPUStates || (isGPU && !channel.states.empty());
            m_hasCPUStates = m_hasCPUStates || (isCPU && !channel.states.empty());
            if (isCPU)
                channel.name = clusterName(channel.name, m_name);
            visit(channel);
        });
    }

    /// True once a channel with times of the GPU, or of the CPU, was visited: the system may refuse
    /// either.
    bool hasGPUStates() const { return m_hasGPUStates; }
    bool hasCPUStates() const { return m_hasCPUStates; }

private:
    explicit ChipChannels(std::unique_ptr<Bridge> bridge) : m_bridge(std::move(bridge)) { }

    /// The channels of a subscription stay the same, so that this is searched only until found.
    template <typename Sample>
    void lookForPerformanceStates(const Sample *delta)
    {
        if (m_hasPerformanceStates)
            return;
        m_bridge->iterate(delta, [this](const ReportingChannel &channel) {
            m_hasPerformanceStates = m_hasPerformanceStates || isGPUPerformanceState(channel);
        });
    }

    std::unique_ptr<Bridge> m_bridge;
    bool m_hasPerformanceStates = false; ///< Of the GPU.
    bool m_hasGPUStates = false;
    bool m_hasCPUStates = false;
    std::string m_name = {}; ///< Of the channel that is visited, where it was changed.
};

} // namespace corvane
