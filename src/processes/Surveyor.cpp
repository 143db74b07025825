#include "processes/Surveyor.h"

#include "platform/ForeignText.h"
#include "processes/AIProcessDetector.h"
#include "processes/ProcessSampler.h"
#include "processes/WorkloadGroups.h"

#include <algorithm>
#include <memory>

namespace corvane {

namespace {

constexpr std::int32_t rowsShown = 20;

/// What all rules make of a process. The call may never return.
ArgumentFacts readFactsOf(std::int32_t pid, const ProcessSource &source)
{
    const auto name = source.name(pid);
    const FolderReader folder = [&source, pid]() -> std::optional<QString> {
        const auto path = source.folder ? source.folder(pid) : std::nullopt;
        return path ? std::optional(QString::fromStdString(*path)) : std::nullopt;
    };
    return AIProcessDetector::takeFacts(
        source.arguments(pid), QString::fromStdString(name.value_or(std::string())), folder);
}

/// The nearest ancestor that is the server of a part.
std::optional<Recognition> serverOf(const Recognition &part, std::int32_t pid,
                                    const ProcessSource &source)
{
    constexpr int generations = 8;
    for (int generation = 0; generation < generations && source.parent; ++generation) {
        const auto parent = source.parent(pid);
        if (!parent || *parent <= 1)
            return std::nullopt;
        pid = *parent;
        const auto found = readFactsOf(pid, source).recognised;
        if (found && isServerOf(part, *found))
            return found;
    }
    return std::nullopt;
}

/// The same, with a part joined with its server. A worker of unknown purpose alone is nothing.
ArgumentFacts readWithServer(std::int32_t pid, const ProcessSource &source)
{
    ArgumentFacts facts = readFactsOf(pid, source);
    if (!facts.recognised || !facts.recognised->isPart)
        return facts;
    if (const auto server = serverOf(*facts.recognised, pid, source))
        facts.recognised = joined(*facts.recognised, *server);
    else if (facts.recognised->framework == AIFramework::generic)
        facts.recognised.reset();
    return facts;
}

std::vector<std::int32_t> pidsOf(const std::vector<ProcessRecord> &processes)
{
    std::vector<std::int32_t> pids(processes.size());
    const auto pidOf = [](const ProcessRecord &process) { return process.pid.value_or(0); };
    std::ranges::transform(processes, pids.begin(), pidOf);
    return pids;
}

} // namespace

Surveyor::Surveyor(ProcessSource source, std::chrono::milliseconds patience,
                   std::shared_ptr<GPUClients> gpus)
    : m_source(std::move(source)),
      m_patience(patience),
      m_gpus(std::move(gpus))
{
}

Survey Surveyor::take(const RankingReport &report)
{
    const auto told = readGPUs([gpus = m_gpus] { return gpus->told(); }, {});
    const auto holding = GPUShares(told).holding(AIProcessDetector::leastMemory);
    const auto processes = heaviest(holding);
    const auto uses = readGPUs(
        [gpus = m_gpus, told, pids = pidsOf(processes)] { return gpus->used(told, pids); }, told);
    const GPUShares shares(uses);

    const ProcessRanking ranking = [&processes](std::int32_t limit) {
        const auto count = std::min(std::ssize(processes), std::ptrdiff_t(limit));
        return std::vector(processes.begin(), processes.begin() + count);
    };
    Survey survey{.processes = ProcessSampler::topByRAM(rowsShown, ranking)};
    for (ProcessRow &row : survey.processes)
        row.gpuMemory = shares.of({static_cast<std::int32_t>(row.id)}).bytes;
    bool reported = !report;
    const FactsReader read = [&](const ProcessIdentity &process) {
        if (!std::exchange(reported, true))
            report(survey.processes);
        return readFacts(process);
    };
    const ProcessRanking candidates = [&processes](std::int32_t) { return processes; };
    const auto onGPU = shares.holding(AIProcessDetector::leastMemory);
    survey.workloads = AIProcessDetector::detectAll(candidates, m_source.identity, read, m_facts,
                                                    {onGPU.begin(), onGPU.end()});
    addGPUs(survey, uses);
    return survey;
}

/// What `read` returns, which may keep it waiting for a driver; else `otherwise`.
std::vector<GPUUse> Surveyor::readGPUs(const std::function<std::vector<GPUUse>()> &read,
                                       std::vector<GPUUse> otherwise)
{
    if (!m_gpus)
        return {};
    if (!m_gpus->readsFiles())
        return read();
    return m_gpuCalls.call(read, m_patience).value.value_or(std::move(otherwise));
}

/// Joins the workloads' processes, and tells who holds the GPUs.
void Surveyor::addGPUs(Survey &survey, const std::vector<GPUUse> &uses) const
{
    ProcessFamily family(m_source.parent);
    const ProcessName name = [this](std::int32_t pid) {
        return foreignText(ProcessBridge::nameOf(pid, m_source));
    };
    survey.workloads = joinedWorkloads(survey.workloads, family);
    addGPUUse(survey.workloads, GPUShares(uses), family, name);
    std::unordered_set<std::int32_t> ai;
    for (const AIWorkload &workload : survey.workloads) {
        const auto pids = pidsOf(workload);
        ai.insert(pids.begin(), pids.end());
    }
    survey.gpuHolders = gpuHolders(uses, ai, name);
}

/// The listing is the expensive part: ranking and detection share one, with no more names than they
/// need.
std::vector<ProcessRecord> Surveyor::heaviest(const std::vector<std::int32_t> &also) const
{
    return ProcessBridge::topProcessesByMemory(
        AIProcessDetector::processesExamined,
        {.first = rowsShown, .fromMemory = AIProcessDetector::leastMemory}, m_source, also);
}

std::optional<ArgumentFacts> Surveyor::readFacts(const ProcessIdentity &process)
{
    if (isLeftAlone(process))
        return ArgumentFacts();
    const std::function<ArgumentFacts()> read = [source = m_source, process] {
        return readWithServer(process.pid, source);
    };
    auto result = m_calls.call(read, m_patience);
    if (result.outcome == TimedCalls::Outcome::tooSlow) {
        leaveAlone(process);
        return ArgumentFacts();
    }
    return std::move(result.value);
}

bool Surveyor::isLeftAlone(const ProcessIdentity &process)
{
    const MutexLock lock(m_mutex);
    return std::ranges::find(m_leftAlone, process) != m_leftAlone.end();
}

/// The facts of a process are forgotten when it leaves the ranking; that it does not answer is not.
void Surveyor::leaveAlone(const ProcessIdentity &process)
{
    constexpr std::size_t most = 64; // Processes end; those of hours ago need no place.
    const MutexLock lock(m_mutex);
    if (m_leftAlone.size() == most)
        m_leftAlone.erase(m_leftAlone.begin());
    m_leftAlone.push_back(process);
}

void Surveyor::rest()
{
    if (m_source.rest)
        m_source.rest();
}

SurveySource surveysOf(std::shared_ptr<Surveyor> surveyor)
{
    return {.take = [surveyor](const RankingReport &report) { return surveyor->take(report); },
            .rest = [surveyor] { surveyor->rest(); }};
}

SurveySource systemSurveys(const std::shared_ptr<GPUHandOver> &gpus)
{
    return surveysOf(std::make_shared<Surveyor>(
        ProcessSource::system(), Surveyor::argumentsPatience, std::make_shared<GPUClients>(gpus)));
}

} // namespace corvane
