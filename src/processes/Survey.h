#pragma once

#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"

#include <string>
#include <vector>

namespace corvane {

/// One look at the machine's processes.
struct Survey {
    std::vector<ProcessRow> processes = {}; ///< The 20 heaviest, largest first.
    std::vector<AIWorkload> workloads = {}; ///< Largest first.

    friend bool operator==(const Survey &, const Survey &) = default;
};

/// Ranks the processes, then looks for AI workloads among them: the outcome of
/// `ProcessSampler::topByRAM(20)` and `AIProcessDetector::detectAll()`, from a single listing. Safe
/// from any thread; meant for one in the background.
Survey takeSurvey();

/// The same of the machine whose kernel files lie below `root` (Linux).
Survey surveyBelow(const std::string &root);

} // namespace corvane
