#pragma once

#include "processes/FactsCache.h"
#include "processes/ProcessSource.h"
#include "processes/Survey.h"
#include "threads/TimedCalls.h"

#include <chrono>
#include <vector>

namespace corvane {

/// Ranks a machine's processes, looks for AI workloads among them, and remembers from survey to
/// survey what is read only once for a process. Safe from any thread: surveys may overlap.
///
/// The arguments of a process may never arrive. One that takes longer than the patience is left
/// alone for the rest of its life and counts as one whose arguments cannot be read.
class Surveyor {
public:
    static constexpr std::chrono::milliseconds argumentsPatience = std::chrono::seconds(1);

    explicit Surveyor(ProcessSource source = ProcessSource::system(),
                      std::chrono::milliseconds patience = argumentsPatience);

    Survey take(const RankingReport &report = {});

private:
    std::vector<ProcessRecord> heaviest() const;
    std::optional<ArgumentFacts> readFacts(const ProcessIdentity &process);
    bool isLeftAlone(const ProcessIdentity &process);
    void leaveAlone(const ProcessIdentity &process);

    const ProcessSource m_source;
    const std::chrono::milliseconds m_patience;
    FactsCache m_facts;
    TimedCalls m_calls{2}; ///< More threads are not spent on processes that do not answer.
    Mutex m_mutex;
    std::vector<ProcessIdentity> m_leftAlone GUARDED_BY(m_mutex); ///< In order of their discovery.
};

/// The surveys of this machine.
SurveySource systemSurveys();

} // namespace corvane
