#pragma once

#include "chip/ChipSource.h"
#include "history/HistoryStore.h"
#include "memory/MemorySampler.h"
#include "models/ModelNames.h"
#include "platform/BootClock.h"
#include "records/ReferenceDate.h"
#include "records/SystemMetrics.h"
#include "sampler/AppSettings.h"

#include <QObject>
#include <QTimer>

#include <chrono>
#include <functional>
#include <memory>
#include <vector>

namespace corvane {

/// Where the sampler gets its numbers and its time from: the program uses the defaults, tests
/// replace them.
struct SamplerSources {
    std::function<MemorySnapshot()> memory = MemorySampler::sample;
    /// What the chip's source and the surveys tell each other; for these two alone.
    std::shared_ptr<GPUHandOver> gpus = std::make_shared<GPUHandOver>();
    ChipSource chip = openChipSource(secondsSinceBoot, gpus); ///< Empty: no reading of the chip.
    SurveySource survey = namedSurveys(gpus);                 ///< Runs in the background.
    std::function<double()> now = secondsSince2001;           ///< Wall clock.
    std::function<double()> steady = secondsSinceBoot;        ///< Never set; measures energy.
    /// How long the main thread waits for the history file. A slower one is shown once it is read.
    std::chrono::milliseconds diskPatience = std::chrono::milliseconds(250);
    /// How long it waits for a survey that is about to be shown for the first time.
    std::chrono::milliseconds surveyPatience = std::chrono::milliseconds(100);
};

class PendingSurvey;

/// Held by those who look at the processes, as long as they do.
using ProcessInterest = std::shared_ptr<const void>;

/// The spine of the program: takes one whole-system sample a second, publishes it, keeps those of
/// the newest minute and adds each to the history file, which it trims every minute. Of what is
/// older it keeps means, and the energy of a week.
///
/// It surveys the processes every third second while somebody looks at them; otherwise their lists
/// are empty. So are lists that no survey could renew for 12 seconds.
///
/// Made once by the application state and kept for the life of the process. Main thread, and so are
/// its signals. A source that fails leaves its part of the sample absent or zero.
class SystemSampler : public QObject {
    Q_OBJECT
    Q_PROPERTY(corvane::SystemMetrics current READ current NOTIFY currentChanged)
    Q_PROPERTY(std::vector<corvane::SystemMetrics> history READ history NOTIFY historyChanged)
    Q_PROPERTY(std::vector<corvane::ProcessRow> processes READ processes NOTIFY processesChanged)
    Q_PROPERTY(
        std::vector<corvane::AIWorkload> aiWorkloads READ aiWorkloads NOTIFY aiWorkloadsChanged)

public:
    static constexpr double interval = 1.0; ///< Seconds from tick to tick.
    static constexpr qint64 processSampleEveryNTicks = 3;
    static constexpr int mostSurveys = 2;          ///< That run at a time: a file may never answer.
    static constexpr qint64 surveyLastsTicks = 12; ///< Older lists are emptied.
    static constexpr qint64 trimEveryNTicks = 60;
    static constexpr qint64 trimKeepSeconds = 120;
    static constexpr qint64 mostSamples = 60; ///< That are kept; of longer windows there are means.

    /// Loads the newest records of the file, takes the first sample and starts the timer. A disk
    /// that hangs delays none of it: its records join the history when they arrive.
    /// In an empty directory (`keepsNoHistory`) it neither reads nor writes a file.
    explicit SystemSampler(AppSettings &settings, SamplerSources sources = {},
                           const QString &historyDirectory = HistoryStore::defaultDirectory(),
                           QObject *parent = nullptr);

    const SystemMetrics &current() const { return m_current; }
    const std::vector<SystemMetrics> &history() const { return m_history; } ///< Oldest first.

    /// The history as the chosen window shows it. Valid until the next sample.
    ChartHistory chartHistory() const;

    EnergyReport energy() const { return m_timeline.energy(m_current.timestamp); }

    const std::vector<ProcessRow> &processes() const { return m_processes; }     ///< Largest first.
    const std::vector<AIWorkload> &aiWorkloads() const { return m_aiWorkloads; } ///< Largest first.

    /// Who holds the GPUs' memory; changes together with the workloads.
    const std::vector<GPUHolders> &gpuHolders() const { return m_gpuHolders; }

    /// Takes surveys as long as the result, or one of another caller, is held. The first is begun
    /// at once.
    [[nodiscard]] ProcessInterest lookAtProcesses();

    /// Whether anything shows the samples or writes them for other programs. Else a vendor's
    /// library is closed, which takes more memory than all the rest, and its GPUs are not read.
    void setShown(bool isShown);

    /// Waits a moment for the newest survey and publishes what it has found, so that whoever begins
    /// to look need not show empty lists first.
    void awaitSurvey();

    /// (Re)starts the timer; the next tick is one interval away.
    void start();

    /// One sampling step. The timer calls it; tests call it to step time by hand.
    void tick();

signals:
    void currentChanged();
    void historyChanged();
    void processesChanged();
    void aiWorkloadsChanged();

private:
    void survey();
    void publishProcesses(std::vector<ProcessRow> processes, qint64 tick);
    void publishWorkloads(std::vector<AIWorkload> workloads, std::vector<GPUHolders> holders,
                          qint64 tick);
    void rest();
    void publish(PendingSurvey &pending, qint64 begin, std::chrono::milliseconds patience);
    void emptyListsOfBefore(qint64 tick);
    void applyWindowChange(qint64 windowSeconds);
    std::vector<SystemMetrics> loadHistory(qint64 windowSeconds);
    std::vector<SystemMetrics> takeLoaded(std::chrono::milliseconds patience);
    void joinLateHistory();
    void keepMeans();

    AppSettings &m_settings;
    SamplerSources m_sources;
    std::unique_ptr<HistoryStore> m_store; ///< Null: no file is kept.
    QTimer m_timer{this};                  ///< A child, so that tests can find and stop it.
    qint64 m_tickCount = 0;                ///< Completed ticks.

    std::weak_ptr<const void> m_interest;          ///< Expired while nobody looks at the processes.
    int m_surveysOut = 0;                          ///< Surveys that run.
    std::shared_ptr<PendingSurvey> m_newestSurvey; ///< Null at rest and before the first one.
    qint64 m_newestBegin = 0;                      ///< Completed ticks when it was begun.
    // Completed ticks when the survey of what is shown was begun.
    qint64 m_processesTick = 0;
    qint64 m_workloadsTick = 0;

    std::shared_ptr<PendingRecords> m_load; ///< Null unless the disk has records to deliver.
    qint64 m_ticksAtLoad = 0;               ///< Completed ticks when they were asked for.

    std::shared_ptr<PendingMinutes> m_minutesLoad; ///< Null once its minutes are in the timeline.
    Timeline m_timeline;

    SystemMetrics m_current = SystemMetrics::placeholder();
    std::vector<SystemMetrics> m_history;
    std::vector<ProcessRow> m_processes;
    std::vector<AIWorkload> m_aiWorkloads;
    std::vector<GPUHolders> m_gpuHolders;
};

/// The directory of a sampler without a file.
inline const QString keepsNoHistory = {};

/// The history for a new window length: its newest samples if it is longer than the window, else
/// what `load` returns if these are more samples.
std::vector<SystemMetrics> historyAfterWindowChange(
    std::vector<SystemMetrics> history, qint64 windowSeconds,
    const std::function<std::vector<SystemMetrics>(qint64)> &load);

} // namespace corvane
