#pragma once

#include "processes/AIWorkload.h"
#include "processes/ProcessRow.h"
#include "records/GPUHolders.h"

#include <vector>

namespace corvane {

struct ProcessSource;

/// The processes of a machine at one time.
struct Survey {
    std::vector<ProcessRow> processes = {};  ///< The 20 heaviest, largest first.
    std::vector<AIWorkload> workloads = {};  ///< Largest first.
    std::vector<GPUHolders> gpuHolders = {}; ///< One a GPU whose memory is told by process.

    friend bool operator==(const Survey &, const Survey &) = default;
};

/// Ranks this machine's processes and looks for AI workloads among them. Safe from any thread;
/// meant for a background one.
Survey takeSurvey();

/// The same for any source.
Survey surveyOf(const ProcessSource &source);

} // namespace corvane
