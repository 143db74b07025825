#include "processes/Surveyor.h"

#include "processes/AIProcessDetector.h"
#include "processes/ProcessSampler.h"

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

} // namespace

Surveyor::Surveyor(ProcessSource source, std::chrono::milliseconds patience)
    : m_source(std::move(source)),
      m_patience(patience)
{
}

Survey Surveyor::take(const RankingReport &report)
{
    const auto processes = heaviest();
    const ProcessRanking ranking = [&processes](std::int32_t limit) {
        const auto count = std::min(std::ssize(processes), std::ptrdiff_t(limit));
        return std::vector(processes.begin(), processes.begin() + count);
    };
    Survey survey{.processes = ProcessSampler::topByRAM(rowsShown, ranking)};
    bool reported = !report;
    const FactsReader read = [&](const ProcessIdentity &process) {
        if (!std::exchange(reported, true))
            report(survey.processes);
        return readFacts(process);
    };
    survey.workloads = AIProcessDetector::detectAll(ranking, m_source.identity, read, m_facts);
    return survey;
}

/// The listing is the expensive part: ranking and detection share one, with no more names than they
/// need.
std::vector<ProcessRecord> Surveyor::heaviest() const
{
    return ProcessBridge::topProcessesByMemory(
        AIProcessDetector::processesExamined,
        {.first = rowsShown, .fromMemory = AIProcessDetector::leastMemory}, m_source);
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

SurveySource systemSurveys()
{
    // Shared with surveys that still run when the program ends.
    return [surveyor = std::make_shared<Surveyor>()](const RankingReport &report) {
        return surveyor->take(report);
    };
}

} // namespace corvane
