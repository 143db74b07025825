#pragma once

#include "processes/AIWorkload.h"

#include <QStringList>

namespace corvane {

/// "llama-3.gguf", or "model unknown".
QString modelText(const AIWorkload &workload);

/// What may stand behind the model, the most first: "Q4_K_M · 97 % of GPU", or with "idle for
/// 12 min", then each alone. A quantisation that the model's name contains is left out.
QStringList modelRemarks(const AIWorkload &workload);

/// What is known of a workload and from where, one fact a line. `gpuLabel` names the GPUs' memory:
/// "VRAM"; empty where it is not told apart.
QString workloadExplanation(const AIWorkload &workload, const QString &gpuLabel);

/// "12 min", "3 h". Whole units, rounded down.
QString spanText(std::int64_t seconds);

} // namespace corvane
