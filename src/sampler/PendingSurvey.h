#pragma once

#include "processes/Survey.h"
#include "threads/Mutex.h"

#include <chrono>
#include <optional>
#include <utility>

namespace corvane {

/// Carries what one survey finds from its thread to the main thread. Safe from any thread.
class PendingSurvey {
public:
    /// What has arrived and was not taken before. With a survey comes its ranking.
    struct News {
        std::optional<std::vector<ProcessRow>> ranking = {};
        std::optional<Survey> survey = {};
    };

    void put(std::vector<ProcessRow> ranking)
    {
        const MutexLock lock(m_mutex);
        m_news.ranking = std::move(ranking);
    }

    void put(Survey survey)
    {
        const MutexLock lock(m_mutex);
        m_news.survey = std::move(survey);
        m_isComplete = true;
        m_completed.notifyAll();
    }

    /// Waits until the survey is complete, at most as long as that.
    News take(std::chrono::milliseconds patience)
    {
        const auto end = std::chrono::steady_clock::now() + patience;
        MutexLock lock(m_mutex);
        for (auto now = end - patience; !m_isComplete && now < end;
             now = std::chrono::steady_clock::now())
            m_completed.waitFor(lock, std::chrono::ceil<std::chrono::milliseconds>(end - now));
        return std::exchange(m_news, {});
    }

private:
    Mutex m_mutex;
    Condition m_completed;
    News m_news GUARDED_BY(m_mutex);
    bool m_isComplete GUARDED_BY(m_mutex) = false;
};

} // namespace corvane
