#pragma once

#include "gpu/GPUHandOver.h"
#include "models/ModelResolver.h"
#include "processes/Survey.h"
#include "threads/TimedCalls.h"

#include <chrono>
#include <map>
#include <memory>

namespace corvane {

/// Names the models of a survey's workloads and remembers the names from survey to survey. Safe
/// from any thread: surveys may overlap.
///
/// A process whose files take longer than the patience is left alone for the rest of its life; its
/// row says what the command line contains. What a process maps may change, and a model may still
/// be loading: a process is looked at again after 3 s, then after twice the time before, at most
/// after a minute, and only while that can tell more.
class ModelNames {
public:
    using Clock = std::function<std::chrono::steady_clock::time_point()>;

    static constexpr std::chrono::milliseconds filesPatience = std::chrono::seconds(1);
    static constexpr std::chrono::seconds shortestPause = std::chrono::seconds(3);
    static constexpr std::chrono::seconds longestPause = std::chrono::seconds(60);

    explicit ModelNames(std::shared_ptr<ModelResolver> resolver = std::make_shared<ModelResolver>(),
                        std::chrono::milliseconds patience = filesPatience,
                        Clock now = std::chrono::steady_clock::now);

    void name(std::vector<AIWorkload> &workloads);

private:
    struct Remembered {
        ProcessIdentity process = {};
        std::optional<QString> model = {}; ///< As the rules found it: a change asks anew.
        ModelFinding finding = {};
        std::chrono::steady_clock::time_point nextLook = {};
        std::chrono::seconds pause = shortestPause;
        bool isLeftAlone = false;
        bool isSettled = false; ///< Another look can tell nothing more.
    };

    std::optional<Remembered> remembered(const AIWorkload &workload) const;
    Remembered lookAt(const AIWorkload &workload, const std::optional<Remembered> &before);
    void keepOnly(const std::vector<AIWorkload> &workloads);

    const std::shared_ptr<ModelResolver> m_resolver; ///< Shared with calls that never return.
    const std::chrono::milliseconds m_patience;
    const Clock m_now;
    TimedCalls m_calls{2}; ///< More threads are not spent on files that do not answer.
    mutable Mutex m_mutex;
    std::map<std::int64_t, Remembered> m_byPid GUARDED_BY(m_mutex);
};

/// The surveys of this machine, with the names of the models.
SurveySource namedSurveys(
    const std::shared_ptr<GPUHandOver> &gpus = std::make_shared<GPUHandOver>());

} // namespace corvane
