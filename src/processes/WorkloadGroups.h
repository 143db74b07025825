#pragma once

#include "gpuclients/GPUShares.h"
#include "processes/AIWorkload.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <vector>

namespace corvane {

/// The parent of a process; absent when it is not known.
using ParentReader = std::function<std::optional<std::int32_t>(std::int32_t pid)>;

/// Which processes descend from which, for one survey: a parent is read once. Not shared.
class ProcessFamily {
public:
    /// Without a reader no process has a parent.
    explicit ProcessFamily(ParentReader parent) : m_read(std::move(parent)) { }

    /// The ancestors of a process, the nearest first: eight at most, without the system's first
    /// process.
    std::vector<std::int32_t> ancestorsOf(std::int32_t pid);

private:
    ParentReader m_read;
    std::map<std::int32_t, std::optional<std::int32_t>> m_parents = {};
};

/// Joins processes that share a model server into one workload each: a server and its runners, an
/// engine and its workers, a router and the servers behind it. These are AI processes of the same
/// framework of which one descends from the other. The eldest stands for all if it names a model,
/// else the largest that does, else the largest; memory is the sum. Largest first.
std::vector<AIWorkload> joinedWorkloads(const std::vector<AIWorkload> &workloads,
                                        ProcessFamily &family);

/// Fills in what each workload holds and uses of the GPUs, in all its processes. Those that descend
/// from it and hold memory of a GPU become parts of it. Largest first, GPU memory included.
void addGPUUse(std::vector<AIWorkload> &workloads, const GPUShares &shares, ProcessFamily &family,
               const ProcessName &name);

/// The processes of a workload, the one that stands for it among them.
std::vector<std::int32_t> pidsOf(const AIWorkload &workload);

} // namespace corvane
