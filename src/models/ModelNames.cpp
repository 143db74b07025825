#include "models/ModelNames.h"

#include "models/IdleTimes.h"
#include "processes/Surveyor.h"

#include <algorithm>
#include <set>
#include <utility>

namespace corvane {

namespace {

/// The resolver stops between two files early enough for what it knows to arrive in time.
constexpr int shareForFiles = 2;

ProcessIdentity identityOf(const AIWorkload &workload)
{
    return {.pid = static_cast<std::int32_t>(workload.pid), .startTime = workload.startTime};
}

bool isNamed(const std::optional<QString> &model)
{
    return model && !model->isEmpty();
}

/// Whether another look can tell nothing more: a name that does not depend on what the process has
/// mapped just now.
bool isSettled(const ModelFinding &finding)
{
    return finding.isComplete && isNamed(finding.model)
        && finding.details.origin != ModelOrigin::usedFile && finding.details.mappedBytes;
}

} // namespace

ModelNames::ModelNames(std::shared_ptr<ModelResolver> resolver, std::chrono::milliseconds patience,
                       Clock now)
    : m_resolver(std::move(resolver)),
      m_patience(patience),
      m_now(std::move(now))
{
}

void ModelNames::name(std::vector<AIWorkload> &workloads)
{
    for (AIWorkload &workload : workloads) {
        auto known = remembered(workload);
        const bool isDue =
            !known || (!known->isLeftAlone && !known->isSettled && known->nextLook <= m_now());
        if (isDue)
            known = lookAt(workload, known);
        workload.model = known->finding.model;
        workload.details = known->finding.details;
    }
    keepOnly(workloads);
}

std::optional<ModelNames::Remembered> ModelNames::remembered(const AIWorkload &workload) const
{
    const MutexLock lock(m_mutex);
    const auto found = m_byPid.find(workload.pid);
    if (found == m_byPid.end() || found->second.process != identityOf(workload)
        || found->second.model != workload.model)
        return std::nullopt;
    return found->second;
}

ModelNames::Remembered ModelNames::lookAt(const AIWorkload &workload,
                                          const std::optional<Remembered> &before)
{
    Remembered next{.process = identityOf(workload),
                    .model = workload.model,
                    .finding = {.model = workload.model, .details = workload.details}};
    if (before) {
        next.finding = before->finding;
        next.pause = std::min(2 * before->pause, longestPause);
    }
    const auto end = std::chrono::steady_clock::now() + m_patience / shareForFiles;
    const std::function<ModelFinding()> resolve = [resolver = m_resolver, workload, end] {
        return resolver->resolve(workload,
                                 [end] { return std::chrono::steady_clock::now() >= end; });
    };
    auto result = m_calls.call(resolve, m_patience);
    next.isLeftAlone = result.outcome == TimedCalls::Outcome::tooSlow;
    if (result.value) {
        next.finding = *std::move(result.value);
        next.isSettled = isSettled(next.finding);
    }
    if (!next.finding.isComplete)
        next.pause = std::chrono::seconds(0); // Goes on with the next survey.
    next.nextLook = m_now() + next.pause;
    const MutexLock lock(m_mutex);
    m_byPid.insert_or_assign(workload.pid, next);
    return next;
}

void ModelNames::keepOnly(const std::vector<AIWorkload> &workloads)
{
    std::set<std::int64_t> pids;
    for (const AIWorkload &workload : workloads)
        pids.insert(workload.pid);
    const MutexLock lock(m_mutex);
    // One that is left alone is not asked again when it comes back into the ranking.
    std::erase_if(m_byPid, [&pids](const auto &entry) {
        return !pids.contains(entry.first) && !entry.second.isLeftAlone;
    });
}

SurveySource namedSurveys(const std::shared_ptr<GPUHandOver> &gpus)
{
    SurveySource surveys = systemSurveys(gpus);
    // Shared with surveys that still run when the program ends.
    surveys.take = [take = std::move(surveys.take), names = std::make_shared<ModelNames>(),
                    idle = std::make_shared<IdleTimes>()](const RankingReport &report) {
        Survey survey = take(report);
        names->name(survey.workloads);
        idle->add(survey.workloads);
        return survey;
    };
    return surveys;
}

} // namespace corvane
