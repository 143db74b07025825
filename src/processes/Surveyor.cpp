#include "processes/Surveyor.h"

#include "processes/AIProcessDetector.h"
#include "processes/ProcessSampler.h"

#include <algorithm>
#include <memory>

namespace corvane {

namespace {

constexpr std::int32_t rowsShown = 20;

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
    const std::function<ArgumentFacts()> read = [arguments = m_source.arguments, process] {
        return AIProcessDetector::takeFacts(arguments(process.pid));
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
