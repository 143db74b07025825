#pragma once

#include "gpuclients/GPUClients.h"
#include "processes/FactsCache.h"
#include "processes/ProcessSource.h"
#include "processes/Survey.h"
#include "threads/TimedCalls.h"

#include <chrono>
#include <memory>
#include <vector>

namespace corvane {

/// Ranks a machine's processes, looks for AI workloads among them, and remembers from survey to
/// survey what is read only once for a process. Safe from any thread: surveys may overlap.
///
/// The arguments of a process may never arrive. One that takes longer than the patience is left
/// alone for the rest of its life and counts as one whose arguments cannot be read. So may what a
/// driver tells of its GPU: until it does, nobody is known to use one.
class Surveyor {
public:
    static constexpr std::chrono::milliseconds argumentsPatience = std::chrono::seconds(1);

    /// `gpus` tells who uses the GPUs; null: nobody does.
    explicit Surveyor(ProcessSource source = ProcessSource::system(),
                      std::chrono::milliseconds patience = argumentsPatience,
                      std::shared_ptr<GPUClients> gpus = nullptr);

    Survey take(const RankingReport &report = {});

    /// Closes what is kept open for the next survey. What is remembered stays.
    void rest();

private:
    std::vector<ProcessRecord> heaviest(const std::vector<std::int32_t> &also) const;
    std::vector<GPUUse> readGPUs(const std::function<std::vector<GPUUse>()> &read,
                                 std::vector<GPUUse> otherwise);
    void addGPUs(Survey &survey, const std::vector<GPUUse> &uses) const;
    std::optional<ArgumentFacts> readFacts(const ProcessIdentity &process);
    bool isLeftAlone(const ProcessIdentity &process);
    void leaveAlone(const ProcessIdentity &process);

    const ProcessSource m_source;
    const std::chrono::milliseconds m_patience;
    const std::shared_ptr<GPUClients> m_gpus;
    FactsCache m_facts;
    TimedCalls m_calls{2}; ///< More threads are not spent on processes that do not answer.
    TimedCalls m_gpuCalls{1};
    Mutex m_mutex;
    std::vector<ProcessIdentity> m_leftAlone GUARDED_BY(m_mutex); ///< In order of their discovery.
};

/// The surveys of a surveyor, which lives as long as one of them runs.
SurveySource surveysOf(std::shared_ptr<Surveyor> surveyor);

/// The surveys of this machine. `gpus` tells which GPUs there are, and whose files may be read.
SurveySource systemSurveys(
    const std::shared_ptr<GPUHandOver> &gpus = std::make_shared<GPUHandOver>());

} // namespace corvane
