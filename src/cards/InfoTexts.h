#pragma once

#include "controls/InfoButton.h"
#include "platform/HostSystem.h"
#include "records/MachineCoverage.h"

#include <array>

namespace corvane {

/// The subjects of the info popovers, one a card.
enum class InfoTopic { memory, power, cpu, gpu, ane, workloads, processes, gpuMemory };

/// Those of a chip of Apple.
inline constexpr std::array allInfoTopics{
    InfoTopic::memory, InfoTopic::power,     InfoTopic::cpu,      InfoTopic::gpu,
    InfoTopic::ane,    InfoTopic::workloads, InfoTopic::processes};

/// The explanation for that system, from `resources/texts/<topic>.<system>.md`: the file's heading
/// is the title, its paragraphs are the text, each on one line. A line that begins with a condition
/// such as `{cpu-locked}` is for machines of which that holds; this has all of them.
InfoText infoText(InfoTopic topic, HostSystem system = hostSystem());

/// The explanation for that machine; for a whole one that of this system. Main thread.
const InfoText &infoText(InfoTopic topic, const MachineCoverage &machine);

} // namespace corvane
