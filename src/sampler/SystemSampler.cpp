#include "sampler/SystemSampler.h"

#include "gpu/GPUHandOver.h"
#include "sampler/PendingSurvey.h"
#include "threads/BackgroundJob.h"
#include "threads/MainThread.h"

#include <QPointer>

#include <algorithm>
#include <utility>

namespace corvane {

namespace {

/// Drops the oldest samples beyond `count`, in one step.
void keepNewest(std::vector<SystemMetrics> &history, qint64 count)
{
    const auto size = static_cast<qint64>(history.size());
    if (size > count)
        history.erase(history.begin(), history.begin() + (size - std::max<qint64>(count, 0)));
}

/// Length of the part of a window that is kept sample by sample.
qint64 sampleSeconds(qint64 windowSeconds)
{
    return std::min(windowSeconds, SystemSampler::mostSamples);
}

} // namespace

SystemSampler::SystemSampler(AppSettings &settings, SamplerSources sources,
                             const QString &historyDirectory, QObject *parent)
    : QObject(parent),
      m_settings(settings),
      m_sources(std::move(sources)),
      m_store(historyDirectory.isEmpty() ? nullptr
                                         : std::make_unique<HistoryStore>(historyDirectory))
{
    assertMainThread();
    m_history = loadHistory(sampleSeconds(seconds(settings.historyWindow())));
    // Queued, so that the history changes after the code that writes the setting has finished.
    connect(
        &m_settings, &AppSettings::historyWindowChanged, this,
        [this](HistoryWindow window) { applyWindowChange(sampleSeconds(seconds(window))); },
        Qt::QueuedConnection);
    connect(&m_timer, &QTimer::timeout, this, &SystemSampler::tick);
    m_timer.setTimerType(Qt::CoarseTimer);

    tick();
    start();
}

void SystemSampler::start()
{
    m_timer.start(static_cast<int>(interval * 1000));
}

void SystemSampler::tick()
{
    joinLateHistory();
    const MemorySnapshot memory = m_sources.memory();
    auto chip = m_sources.chip ? m_sources.chip() : std::nullopt;
    m_current = {.timestamp = m_sources.now(), .memory = memory, .chip = std::move(chip)};
    keepMeans();
    emit currentChanged();

    m_history.push_back(m_current);
    keepNewest(m_history, sampleSeconds(seconds(m_settings.historyWindow())));
    emit historyChanged();

    if (m_store)
        m_store->append(PersistedMetric::from(m_current));

    ++m_tickCount;
    if (m_tickCount % processSampleEveryNTicks == 0 && !m_interest.expired())
        survey();
    emptyListsOfBefore(m_tickCount - surveyLastsTicks);
    if (m_tickCount % trimEveryNTicks == 0 && m_store)
        m_store->trim(trimKeepSeconds);
}

void SystemSampler::setShown(bool isShown)
{
    m_sources.gpus->setShown(isShown);
}

ChartHistory SystemSampler::chartHistory() const
{
    const qint64 window = seconds(m_settings.historyWindow());
    if (window <= mostSamples)
        return m_history;
    return {m_history, m_timeline.window(static_cast<double>(window), m_current.timestamp)};
}

void SystemSampler::keepMeans()
{
    if (m_tickCount == 0 && m_store)
        m_minutesLoad = m_store->startLoadMinutes(m_current.timestamp);
    if (const auto ended = m_timeline.add(m_current, m_sources.steady()); ended && m_store)
        m_store->append(*ended);
    const auto loaded =
        m_minutesLoad ? m_minutesLoad->take(std::chrono::milliseconds(0)) : std::nullopt;
    if (!loaded)
        return;
    m_minutesLoad.reset();
    for (const MinuteRecord &minute : m_timeline.add(*loaded, coverageOf(m_current)))
        m_store->append(minute);
}

ProcessInterest SystemSampler::lookAtProcesses()
{
    auto interest = m_interest.lock();
    if (!interest) {
        interest = ProcessInterest(this, [sampler = QPointer(this)](const void *) {
            if (sampler)
                sampler->rest();
        });
        m_interest = interest;
    }
    survey();
    return interest;
}

void SystemSampler::awaitSurvey()
{
    if (m_newestSurvey)
        publish(*m_newestSurvey, m_newestBegin, m_sources.surveyPatience);
}

void SystemSampler::survey()
{
    if (m_surveysOut == mostSurveys || !m_sources.survey.take)
        return;
    const auto pending = std::make_shared<PendingSurvey>();
    const auto job = [pending, take = m_sources.survey.take](const auto &report) {
        pending->put(take([&pending, &report](std::vector<ProcessRow> ranking) {
            pending->put(std::move(ranking));
            report();
        }));
    };
    const auto publishNews = [this, pending, begin = m_tickCount] {
        publish(*pending, begin, std::chrono::milliseconds(0));
    };
    const bool runs = runThenCall(this, job, publishNews, [this, publishNews] {
        --m_surveysOut;
        publishNews();
    });
    if (!runs)
        return;
    ++m_surveysOut;
    m_newestSurvey = pending;
    m_newestBegin = m_tickCount;
}

/// Nobody looks any more. A survey that still runs has no receiver.
void SystemSampler::rest()
{
    m_newestSurvey.reset();
    emptyListsOfBefore(m_tickCount + 1);
    if (m_sources.survey.rest)
        runThenCall(this, m_sources.survey.rest, [] {});
}

void SystemSampler::publish(PendingSurvey &pending, qint64 begin,
                            std::chrono::milliseconds patience)
{
    auto [ranking, survey] = pending.take(patience);
    if (m_interest.expired())
        return;
    if (survey) {
        publishProcesses(std::move(survey->processes), begin);
        publishWorkloads(std::move(survey->workloads), std::move(survey->gpuHolders), begin);
    } else if (ranking) {
        publishProcesses(*std::move(ranking), begin);
    }
}

/// A survey that was kept waiting may end after a later one; what it found is dropped.
void SystemSampler::publishProcesses(std::vector<ProcessRow> processes, qint64 tick)
{
    if (tick < m_processesTick)
        return;
    m_processesTick = tick;
    m_processes = std::move(processes);
    emit processesChanged();
}

void SystemSampler::publishWorkloads(std::vector<AIWorkload> workloads,
                                     std::vector<GPUHolders> holders, qint64 tick)
{
    if (tick < m_workloadsTick)
        return;
    m_workloadsTick = tick;
    m_aiWorkloads = std::move(workloads);
    m_gpuHolders = std::move(holders);
    emit aiWorkloadsChanged();
}

void SystemSampler::emptyListsOfBefore(qint64 tick)
{
    if (m_processesTick < tick && !m_processes.empty())
        publishProcesses({}, m_processesTick);
    if (m_workloadsTick < tick && !(m_aiWorkloads.empty() && m_gpuHolders.empty()))
        publishWorkloads({}, {}, m_workloadsTick);
}

void SystemSampler::applyWindowChange(qint64 windowSeconds)
{
    m_history = historyAfterWindowChange(std::move(m_history), windowSeconds,
                                         [this](qint64 count) { return loadHistory(count); });
    emit historyChanged();
}

std::vector<SystemMetrics> SystemSampler::loadHistory(qint64 windowSeconds)
{
    if (!m_store)
        return {};
    m_load = m_store->startLoad(static_cast<int>(windowSeconds));
    m_ticksAtLoad = m_tickCount;
    return takeLoaded(m_sources.diskPatience);
}

/// The samples of the file with those that were taken since they were asked for; empty while the
/// disk has not delivered them.
std::vector<SystemMetrics> SystemSampler::takeLoaded(std::chrono::milliseconds patience)
{
    const auto records = m_load ? m_load->take(patience) : std::nullopt;
    if (!records)
        return {};
    m_load.reset();
    std::vector<SystemMetrics> samples;
    for (const PersistedMetric &record : *records)
        samples.push_back(record.toSample());
    const auto since = std::min<qint64>(m_tickCount - m_ticksAtLoad, std::ssize(m_history));
    samples.insert(samples.end(), m_history.end() - since, m_history.end());
    return samples;
}

void SystemSampler::joinLateHistory()
{
    if (!m_load)
        return;
    m_history = historyAfterWindowChange(
        m_history, sampleSeconds(seconds(m_settings.historyWindow())),
        [this](qint64) { return takeLoaded(std::chrono::milliseconds(0)); });
}

std::vector<SystemMetrics> historyAfterWindowChange(
    std::vector<SystemMetrics> history, qint64 windowSeconds,
    const std::function<std::vector<SystemMetrics>(qint64)> &load)
{
    if (windowSeconds < static_cast<qint64>(history.size())) {
        keepNewest(history, windowSeconds);
        return history;
    }
    std::vector<SystemMetrics> loaded = load(windowSeconds);
    return loaded.size() > history.size() ? loaded : history;
}

} // namespace corvane
