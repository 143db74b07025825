#include "processes/WorkloadGroups.h"

#include <algorithm>

namespace corvane {

namespace {

/// What a child must hold of the GPUs to be worth naming: every program that draws has some.
constexpr std::uint64_t leastGPUPart = 1 << 20;

WorkloadPart partOf(const AIWorkload &workload)
{
    return {.pid = workload.pid,
            .name = workload.processName,
            .model = workload.model,
            .memory = workload.memory,
            .gpuMemory = workload.gpuMemory};
}

/// The eldest ancestor that is a workload of the same framework; the process itself without one.
std::int64_t eldestOf(const AIWorkload &workload, const std::vector<AIWorkload> &workloads,
                      ProcessFamily &family)
{
    std::int64_t eldest = workload.pid;
    for (const std::int32_t ancestor :
         family.ancestorsOf(static_cast<std::int32_t>(workload.pid))) {
        const auto found = std::ranges::find(workloads, ancestor, &AIWorkload::pid);
        if (found != workloads.end() && found->framework == workload.framework)
            eldest = ancestor;
    }
    return eldest;
}

/// Follows the eldest ancestors, since the search for each is limited; the process itself where
/// they lead in a circle.
std::int64_t rootOf(std::int64_t pid, const std::map<std::int64_t, std::int64_t> &eldest)
{
    std::int64_t root = pid;
    for (std::size_t step = 0; step < eldest.size(); ++step) {
        const std::int64_t next = eldest.at(root);
        if (next == root)
            return root;
        root = next;
    }
    return pid;
}

void addPart(AIWorkload &whole, WorkloadPart part)
{
    if (whole.parts.empty())
        whole.parts.push_back(partOf(whole));
    whole.parts.push_back(std::move(part));
}

/// The process that stands for the whole: the eldest if it names a model, else the largest that
/// does, else the largest.
const AIWorkload &standFor(const std::vector<const AIWorkload *> &processes, std::int64_t eldest)
{
    const AIWorkload *best = processes.front();
    for (const AIWorkload *process : processes) {
        if (process->model && (!best->model || process->pid == eldest))
            best = process;
    }
    return *best;
}

/// `processes` are in order of their size.
AIWorkload wholeOf(const std::vector<const AIWorkload *> &processes, std::int64_t eldest)
{
    AIWorkload whole = standFor(processes, eldest);
    const std::int64_t pid = whole.pid;
    for (const AIWorkload *process : processes) {
        if (process->pid == pid)
            continue;
        addPart(whole, partOf(*process));
        whole.memory += process->memory;
    }
    return whole;
}

/// What the system has to find room for.
std::uint64_t allMemory(const AIWorkload &workload)
{
    return workload.memory + workload.gpuMemory.value_or(0);
}

} // namespace

std::vector<std::int32_t> ProcessFamily::ancestorsOf(std::int32_t pid)
{
    constexpr std::size_t generations = 8;
    const std::int32_t origin = pid;
    std::vector<std::int32_t> ancestors;
    while (m_read && ancestors.size() < generations) {
        const auto [place, isNew] = m_parents.try_emplace(pid);
        if (isNew)
            place->second = m_read(pid);
        const auto parent = place->second;
        const bool isCircle = parent == origin || std::ranges::count(ancestors, parent) > 0;
        if (!parent || *parent <= 1 || isCircle)
            break;
        ancestors.push_back(*parent);
        pid = *parent;
    }
    return ancestors;
}

std::vector<AIWorkload> joinedWorkloads(const std::vector<AIWorkload> &workloads,
                                        ProcessFamily &family)
{
    std::map<std::int64_t, std::int64_t> eldest; // By process.
    for (const AIWorkload &workload : workloads)
        eldest[workload.pid] = eldestOf(workload, workloads, family);

    std::map<std::int64_t, std::vector<const AIWorkload *>> groups; // By the eldest.
    for (const AIWorkload &workload : workloads)
        groups[rootOf(workload.pid, eldest)].push_back(&workload);
    std::vector<AIWorkload> joined;
    for (const AIWorkload &workload : workloads) {
        const auto group = groups.find(rootOf(workload.pid, eldest));
        if (group == groups.end())
            continue; // Joined before.
        joined.push_back(wholeOf(group->second, group->first));
        groups.erase(group);
    }
    std::ranges::stable_sort(joined, std::greater(), &AIWorkload::memory);
    return joined;
}

void addGPUUse(std::vector<AIWorkload> &workloads, const GPUShares &shares, ProcessFamily &family,
               const ProcessName &name)
{
    std::map<std::int32_t, std::size_t> places; // By process.
    for (std::size_t place = 0; place < workloads.size(); ++place) {
        for (const std::int32_t pid : pidsOf(workloads[place]))
            places.emplace(pid, place);
    }
    for (const std::int32_t pid : shares.holding(leastGPUPart)) {
        if (places.empty() || places.contains(pid))
            continue;
        for (const std::int32_t ancestor : family.ancestorsOf(pid)) {
            const auto known = places.find(ancestor);
            if (known == places.end())
                continue;
            addPart(workloads[known->second], {.pid = pid, .name = name(pid)});
            break;
        }
    }
    for (AIWorkload &workload : workloads) {
        const GPUShare share = shares.of(pidsOf(workload));
        workload.gpuMemory = share.bytes;
        workload.gpuFraction = share.fraction;
        for (WorkloadPart &part : workload.parts)
            part.gpuMemory = shares.of({static_cast<std::int32_t>(part.pid)}).bytes;
    }
    std::ranges::stable_sort(workloads, std::greater(), allMemory);
}

std::vector<std::int32_t> pidsOf(const AIWorkload &workload)
{
    std::vector<std::int32_t> pids = {static_cast<std::int32_t>(workload.pid)};
    for (const WorkloadPart &part : workload.parts) {
        if (part.pid != workload.pid)
            pids.push_back(static_cast<std::int32_t>(part.pid));
    }
    return pids;
}

} // namespace corvane
