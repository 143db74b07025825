#include "processes/Survey.h"

#include "processes/AIProcessDetector.h"
#include "processes/ProcessSampler.h"

#include <algorithm>

namespace corvane {

Survey takeSurvey()
{
    return surveyBelow("/");
}

Survey surveyBelow(const std::string &root)
{
    constexpr std::size_t rowsShown = 20;
    const auto heaviest = ProcessBridge::topProcessesByMemory(
        AIProcessDetector::processesLooked, root,
        {.first = rowsShown, .fromMemory = AIProcessDetector::leastMemory});
    const std::span shown(heaviest.data(), std::min(heaviest.size(), rowsShown));
    return {.processes = ProcessSampler::rows(shown),
            .workloads = AIProcessDetector::detect(heaviest, [&root](std::int32_t pid) {
                return ProcessBridge::processArgsForPID(pid, root);
            })};
}

} // namespace corvane
