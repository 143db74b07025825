#include "chip/ChipChannels.h"

namespace corvane {

bool isGPUPerformanceState(const ReportingChannel &channel)
{
    return channel.group == "GPU Stats" && channel.subgroup == "GPU Performance States"
        && !channel.states.empty();
}

std::string_view clusterName(std::string_view name, std::string &storage)
{
    if (!name.starts_with("MCPU"))
        return name;
    storage = name;
    storage.front() = 'E';
    return storage;
}

} // namespace corvane
