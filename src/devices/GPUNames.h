#pragma once

#include "records/MachineCoverage.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace corvane {

/// "RTX 3090" of "NVIDIA GeForce RTX 3090": without maker and brand.
QString shortGPUName(const QString &name);

/// What several GPUs are called together: "4 × NVIDIA RTX A6000", "2 graphics cards"; the name of
/// one alone.
QString gpuGroupName(const std::vector<GPUCoverage> &gpus);

/// The same for the card of their memory, which says of an integrated GPU where its memory lies:
/// "0.5 GB own + 15.31 GB of RAM".
QString gpuMemoryHeading(const std::vector<GPUCoverage> &gpus);

/// The name of a column of several GPUs: "GPU 0" of alike ones, else the short name.
QString gpuColumnName(const std::vector<GPUCoverage> &gpus, std::size_t index);

/// What the card of GPU memory cannot show and why, in sentences.
QStringList gpuMemoryNotes(const MachineCoverage &machine);

} // namespace corvane
