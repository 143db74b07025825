#pragma once

#include "cpu/CPUClusters.h"

#include <string>
#include <vector>

namespace corvane {

/// The clusters of the Linux machine whose kernel files lie below `root`, the performance cluster
/// first. They stay the same while the machine runs. Any thread.
std::vector<CPUCluster> readCPUClusters(const std::string &root = "/");

} // namespace corvane
