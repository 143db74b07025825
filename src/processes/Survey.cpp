#include "processes/Survey.h"

#include "processes/AIProcessDetector.h"
#include "processes/ProcessSampler.h"

#include <algorithm>

namespace corvane {

Survey takeSurvey()
{
    return surveyOf(ProcessSource::system());
}

Survey surveyOf(const ProcessSource &source)
{
    constexpr std::int32_t rowsShown = 20;
    // The listing is the expensive part: both share one, with no more names than they need.
    const auto heaviest = ProcessBridge::topProcessesByMemory(
        AIProcessDetector::processesExamined,
        {.first = rowsShown, .fromMemory = AIProcessDetector::leastMemory}, source);
    const ProcessRanking ranking = [&heaviest](std::int32_t limit) {
        const auto count = std::min(std::ssize(heaviest), std::ptrdiff_t(limit));
        return std::vector(heaviest.begin(), heaviest.begin() + count);
    };
    return {.processes = ProcessSampler::topByRAM(rowsShown, ranking),
            .workloads =
                AIProcessDetector::detectAll(ranking, ProcessBridge::argumentReader(source))};
}

} // namespace corvane
