#pragma once

#include "controls/InfoButton.h"
#include "platform/HostSystem.h"

#include <array>

namespace corvane {

/// The subjects of the info popovers, one a card.
enum class InfoTopic { memory, power, cpu, gpu, ane, workloads, processes };

inline constexpr std::array allInfoTopics{
    InfoTopic::memory, InfoTopic::power,     InfoTopic::cpu,      InfoTopic::gpu,
    InfoTopic::ane,    InfoTopic::workloads, InfoTopic::processes};

/// The explanation for that system, from `resources/texts/<topic>.<system>.md`: the file's heading
/// is the title, its paragraphs are the text, each on one line.
InfoText infoText(InfoTopic topic, HostSystem system = hostSystem());

} // namespace corvane
