#pragma once

#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"
#include "records/GPUHolders.h"

#include <functional>
#include <vector>

namespace corvane {

/// The processes of a machine at one time.
struct Survey {
    std::vector<ProcessRow> processes = {};  ///< The 20 heaviest, largest first.
    std::vector<AIWorkload> workloads = {};  ///< Largest first.
    std::vector<GPUHolders> gpuHolders = {}; ///< One a GPU whose memory is known by process.

    friend bool operator==(const Survey &, const Survey &) = default;
};

/// Takes the ranking of a survey that is not complete yet.
using RankingReport = std::function<void(std::vector<ProcessRow>)>;

/// Where surveys come from. Both functions are safe from any thread and meant for a background one.
struct SurveySource {
    /// Takes a survey. Before it reads a file that may keep it waiting it reports the ranking, at
    /// most once. Empty: there are no surveys.
    std::function<Survey(const RankingReport &report)> take = {};

    /// Releases what was kept for the next survey, since nobody looks any more. Empty: nothing is.
    std::function<void()> rest = {};
};

} // namespace corvane
