#pragma once

#include "platform/HostSystem.h"
#include "ui/InfoButton.h"

#include <array>

namespace corvane {

/// What the info buttons explain, a card each.
enum class InfoTopic { memory, power, cpu, gpu, ane, workloads, processes };

inline constexpr std::array allInfoTopics{
    InfoTopic::memory, InfoTopic::power,     InfoTopic::cpu,      InfoTopic::gpu,
    InfoTopic::ane,    InfoTopic::workloads, InfoTopic::processes};

/// The explanation as it is true on that system; the title is the same on both.
InfoText infoText(InfoTopic topic, HostSystem system = hostSystem());

} // namespace corvane
